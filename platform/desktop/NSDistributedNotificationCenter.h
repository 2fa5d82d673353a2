#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "platform/base/Value.h"

namespace vornix {

// Announcements to every program of the session. Nobody answers. Main thread.
class NSDistributedNotificationCenter {
 public:
  virtual ~NSDistributedNotificationCenter() = default;

  // A session that cannot be reached is reported as a diagnostic. An array of texts in `userInfo`
  // is a list of paths.
  virtual void postNotificationName(std::string_view name, std::string_view object,
                                    const Dictionary& userInfo, bool deliverImmediately) = 0;

  // The session's, never destroyed; connects when first used.
  [[nodiscard]] static NSDistributedNotificationCenter& defaultCenter();
};

}  // namespace vornix
