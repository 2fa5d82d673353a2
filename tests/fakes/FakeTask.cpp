#include "tests/fakes/FakeTask.h"

#include <algorithm>
#include <cerrno>

namespace vornix::fakes {

std::optional<NSError> FakeTask::launch(const std::string& path,
                                        const std::vector<std::string>& arguments) {
  if (run_) return posixError(EALREADY, path);
  if (std::ranges::find(programs_.missing, path) != programs_.missing.end())
    return posixError(ENOENT, path);
  run_ = programs_.runs.size();
  programs_.runs.push_back({path, arguments});
  return std::nullopt;
}

void FakeTask::waitUntilExit() {
  if (!run_ || status_) return;
  programs_.runs[*run_].waitedFor = true;
  if (programs_.whileRunning) programs_.whileRunning();
  status_ = programs_.exitStatus;
}

int FakeTask::processIdentifier() const {
  return run_ ? static_cast<int>(*run_) + 1 : 0;
}

}  // namespace vornix::fakes
