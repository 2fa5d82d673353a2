#include "platform/linux/system/KernelFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>

namespace vornix {
namespace {

constexpr std::size_t limit = std::size_t{1} << 20U;

// 0 at the end of the file or at the limit, else the error's number.
int readAll(int descriptor, std::string& contents) {
  std::array<char, 4096> buffer{};
  while (contents.size() < limit) {
    const ssize_t count = read(descriptor, buffer.data(), buffer.size());
    if (count == 0) {
      return 0;
    }
    if (count > 0) {
      contents.append(buffer.data(), static_cast<std::size_t>(count));
    } else if (errno != EINTR) {
      return errno;
    }
  }
  return 0;
}

}  // namespace

std::optional<std::string> readKernelFile(const std::string& path, int* errorNumber) {
  std::string contents;
  // A named pipe in the place of the file must not hold the process up.
  const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  const int failure = descriptor < 0 ? errno : readAll(descriptor, contents);
  if (descriptor >= 0) {
    close(descriptor);
  }
  if (errorNumber != nullptr) {
    *errorNumber = failure;
  }
  return failure == 0 ? std::optional(contents) : std::nullopt;
}

}  // namespace vornix
