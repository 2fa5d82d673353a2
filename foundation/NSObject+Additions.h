#pragma once

#include <memory>
#include <optional>
#include <string_view>

#include "platform/base/NSObject.h"

namespace vornix {

// Send the receiver's change notice for the key on the main thread: at once from there, from any
// other thread queued in the common modes, with the receiver retained. Nothing happens without a
// key or a receiver. Any thread.
void willChangeValueForKeyOnMainThread(const std::shared_ptr<NSObject>& self,
                                       std::optional<std::string_view> key);
void didChangeValueForKeyOnMainThread(const std::shared_ptr<NSObject>& self,
                                      std::optional<std::string_view> key);

}  // namespace vornix
