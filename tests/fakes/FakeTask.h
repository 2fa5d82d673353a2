#pragma once

#include <functional>
#include <string>
#include <vector>

#include "platform/system/NSTask.h"

namespace vornix::fakes {

// Every task that was launched, and what the programs do.
struct FakePrograms {
  struct Run {
    std::string path;
    std::vector<std::string> arguments;
    bool waitedFor = false;
  };

  std::vector<Run> runs;
  // Programs that cannot be run.
  std::vector<std::string> missing;
  // Called while a task is waited for.
  std::function<void()> whileRunning;
  int exitStatus = 0;
};

// A task that starts no process.
class FakeTask final : public NSTask {
 public:
  explicit FakeTask(FakePrograms& programs) : programs_(programs) {}

  [[nodiscard]] std::optional<NSError> launch(const std::string& path,
                                              const std::vector<std::string>& arguments) override;
  void waitUntilExit() override;
  [[nodiscard]] std::optional<int> terminationStatus() const override { return status_; }
  [[nodiscard]] int processIdentifier() const override;

 private:
  FakePrograms& programs_;
  std::optional<std::size_t> run_;
  std::optional<int> status_;
};

// Those that `makeTask` records on the fake platform.
FakePrograms& processPrograms();

}  // namespace vornix::fakes
