#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/base/NSObject.h"
#include "platform/system/SystemLog.h"

namespace vornix {

// One client of the system's log, with a facility of the caller's or none. One thread.
class GTMLoggerASLClient : public NSObject {
 public:
  // Null when the system's log cannot be reached.
  [[nodiscard]] static std::shared_ptr<GTMLoggerASLClient> createWithFacility(
      const std::optional<std::string>& facility);

  // `level` is a priority of the system's log: 1 alert, 3 error, 5 notice, 6 info.
  virtual void log(std::string_view message, int level);

  [[nodiscard]] std::string_view className() const override { return "GTMLoggerASLClient"; }

 protected:
  // Without a client of the system's log, for those that do without.
  explicit GTMLoggerASLClient(std::unique_ptr<SystemLogClient> client = nullptr);

 private:
  std::unique_ptr<SystemLogClient> client_;
};

}  // namespace vornix
