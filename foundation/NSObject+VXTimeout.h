#pragma once

#include <functional>
#include <memory>

#include "platform/base/NSObject.h"

namespace vornix {

// Runs the block on the background queue and returns when it has, or after that many seconds (not a
// number or less than 0: at once), at the most 0.01 later. Only the log tells which: a block that
// needs longer is logged with the calls that led here, and runs on to its end, which may be after
// the caller is gone. Meanwhile the caller's run loop turns in the default mode. A missing block is
// logged, and done. An exception that leaves the block is reported. Without a receiver nothing
// happens. Any thread.
void performBlockTimeout(const std::shared_ptr<NSObject>& self, std::function<void()> block,
                         double timeout);

}  // namespace vornix
