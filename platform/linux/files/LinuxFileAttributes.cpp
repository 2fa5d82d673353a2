#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>

#include <cerrno>
#include <cstddef>

#include "platform/files/FileAttributes.h"

namespace vornix {
namespace {

constexpr std::string_view kUserSpace = "user.";

bool namesNothing(std::string_view path) {
  return path.find('\0') != std::string_view::npos;
}

// The list as the system has it. It may grow between the two calls.
int rawNames(const std::string& path, std::string& names) {
  while (true) {
    const ssize_t needed = llistxattr(path.c_str(), nullptr, 0);
    if (needed < 0) return errno;
    names.resize(static_cast<std::size_t>(needed));
    const ssize_t length = llistxattr(path.c_str(), names.data(), names.size());
    if (length < 0 && errno == ERANGE) continue;
    if (length < 0) return errno;
    names.resize(static_cast<std::size_t>(length));
    return 0;
  }
}

std::string withoutUserSpace(std::string_view list) {
  std::string names;
  while (!list.empty()) {
    const std::size_t length = list.find('\0');
    std::string_view name = list.substr(0, length);
    list.remove_prefix(length == std::string_view::npos ? list.size() : length + 1);
    if (name.starts_with(kUserSpace)) name.remove_prefix(kUserSpace.size());
    names.append(name).push_back('\0');
  }
  return names;
}

class LinuxFileAttributes final : public FileAttributes {
 public:
  [[nodiscard]] int details(std::string_view path, FileDetails& details) const override {
    if (namesNothing(path)) return ENOENT;
    struct statx found {};
    const unsigned int wanted = STATX_BTIME | STATX_MTIME | STATX_ATIME;
    if (statx(AT_FDCWD, std::string(path).c_str(), AT_NO_AUTOMOUNT, wanted, &found) != 0)
      return errno;
    const bool hasBirthTime = (found.stx_mask & STATX_BTIME) != 0;
    details = {.birthTime = hasBirthTime ? found.stx_btime.tv_sec : 0,
               .modificationTime = found.stx_mtime.tv_sec,
               .accessTime = found.stx_atime.tv_sec};
    return 0;
  }

  [[nodiscard]] int extendedAttributeNames(std::string_view path,
                                           std::string& names) const override {
    if (namesNothing(path)) return ENOENT;
    std::string list;
    if (const int error = rawNames(std::string(path), list)) return error;
    names = withoutUserSpace(list);
    return 0;
  }
};

}  // namespace

const FileAttributes& sharedFileAttributes() {
  static const auto& attributes = *new LinuxFileAttributes;
  return attributes;
}

}  // namespace vornix
