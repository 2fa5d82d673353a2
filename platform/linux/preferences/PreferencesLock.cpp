#include "platform/linux/preferences/PreferencesLock.h"

#include <fcntl.h>
#include <sys/file.h>

#include <algorithm>
#include <cerrno>
#include <thread>
#include <utility>

namespace vornix {

std::optional<PreferencesLock> PreferencesLock::acquire(const std::string& path,
                                                        std::chrono::milliseconds patience) {
  using Clock = std::chrono::steady_clock;
  constexpr std::chrono::milliseconds kLongestPause(16);
  FileDescriptor file(
      open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, 0600));
  if (!file.isOpen()) return std::nullopt;
  const auto deadline = Clock::now() + patience;
  std::chrono::microseconds pause(200);
  while (flock(file.get(), LOCK_EX | LOCK_NB) != 0) {
    if (errno != EWOULDBLOCK && errno != EINTR) return std::nullopt;
    if (Clock::now() >= deadline) {
      errno = ETIMEDOUT;
      return std::nullopt;
    }
    std::this_thread::sleep_for(pause);
    pause = std::min<std::chrono::microseconds>(pause * 2, kLongestPause);
  }
  return PreferencesLock(std::move(file));
}

}  // namespace vornix
