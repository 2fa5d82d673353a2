#include "platform/linux/desktop/applications/SmallFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>

namespace vornix::desktop {
namespace {

class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() {
    const int kept = errno;
    if (number_ >= 0) close(number_);
    errno = kept;
  }
  [[nodiscard]] int number() const { return number_; }

 private:
  int number_;
};

bool isRegularFile(int descriptor) {
  struct stat status {};
  if (fstat(descriptor, &status) != 0) return false;
  if (S_ISREG(status.st_mode)) return true;
  errno = EINVAL;
  return false;
}

}  // namespace

std::optional<std::string> readSmallFile(const std::string& path, std::size_t limit) {
  const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
  if (file.number() < 0 || !isRegularFile(file.number())) return std::nullopt;
  std::string contents;
  std::array<char, 8192> buffer{};
  while (true) {
    const ssize_t count = read(file.number(), buffer.data(), buffer.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return std::nullopt;
    if (count == 0) return contents;
    contents.append(buffer.data(), static_cast<std::size_t>(count));
    if (contents.size() > limit) {
      errno = EFBIG;
      return std::nullopt;
    }
  }
}

}  // namespace vornix::desktop
