#pragma once

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "platform/system/SystemLog.h"

namespace vornix::fakes {

// A system log that keeps its records. Any thread.
class FakeSystemLog {
 public:
  struct Record {
    std::optional<std::string> facility;
    int priority = 0;
    std::string message;
  };

  // Null while the log is unreachable. The log must outlive the client.
  [[nodiscard]] std::unique_ptr<SystemLogClient> open(const std::optional<std::string>& facility);

  void setReachable(bool reachable);
  [[nodiscard]] std::vector<Record> records() const;
  // Clients opened so far, and those of them still open.
  [[nodiscard]] int openedClients() const;
  [[nodiscard]] int openClients() const;

 private:
  class Client;

  mutable std::mutex mutex_;
  bool reachable_ = true;
  int opened_ = 0;
  int open_ = 0;
  std::vector<Record> records_;
};

// The one behind `openSystemLog` on the fake platform.
FakeSystemLog& processSystemLog();

}  // namespace vornix::fakes
