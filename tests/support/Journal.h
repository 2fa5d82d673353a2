#pragma once

#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace vornix::tests {

// What happened, in order, on whatever thread.
class Journal {
 public:
  void note(std::string event) {
    const std::lock_guard lock(mutex_);
    events_.push_back(std::move(event));
  }
  [[nodiscard]] std::vector<std::string> events() const {
    const std::lock_guard lock(mutex_);
    return events_;
  }

 private:
  mutable std::mutex mutex_;
  std::vector<std::string> events_;
};

}  // namespace vornix::tests
