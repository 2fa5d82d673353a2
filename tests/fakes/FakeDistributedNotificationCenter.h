#pragma once

#include <string>
#include <vector>

#include "platform/desktop/NSDistributedNotificationCenter.h"

namespace vornix::fakes {

// Keeps what was posted.
class FakeDistributedNotificationCenter final : public NSDistributedNotificationCenter {
 public:
  struct Posted {
    std::string name;
    std::string object;
    Dictionary userInfo;
    bool deliverImmediately = false;
  };

  void postNotificationName(std::string_view name, std::string_view object,
                            const Dictionary& userInfo, bool deliverImmediately) override {
    posted.push_back({std::string(name), std::string(object), userInfo, deliverImmediately});
  }

  std::vector<Posted> posted;
};

// The one that `NSDistributedNotificationCenter::defaultCenter` answers on the fake platform.
FakeDistributedNotificationCenter& processDistributedCenter();

}  // namespace vornix::fakes
