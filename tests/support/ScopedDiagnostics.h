#pragma once

#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "platform/base/Diagnostics.h"

namespace vornix::tests {

// While it lives, collects what the platform layer reports. Any thread.
class ScopedDiagnostics {
 public:
  ScopedDiagnostics() {
    setDiagnosticReceiver([this](std::string_view line) {
      const std::lock_guard lock(mutex_);
      lines_.emplace_back(line);
    });
  }
  ScopedDiagnostics(const ScopedDiagnostics&) = delete;
  ScopedDiagnostics& operator=(const ScopedDiagnostics&) = delete;
  ~ScopedDiagnostics() { setDiagnosticReceiver({}); }

  [[nodiscard]] std::vector<std::string> lines() const {
    const std::lock_guard lock(mutex_);
    return lines_;
  }

 private:
  mutable std::mutex mutex_;
  std::vector<std::string> lines_;
};

}  // namespace vornix::tests
