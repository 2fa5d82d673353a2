#include "platform/system/NSProcessInfo.h"

#include <fcntl.h>
#include <linux/openat2.h>
#include <sys/auxv.h>
#include <sys/syscall.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <charconv>
#include <climits>
#include <cstdlib>
#include <utility>

#include "platform/base/PathText.h"
#include "platform/linux/system/Account.h"
#include "platform/linux/system/FileDescriptor.h"
#include "platform/linux/system/LocaleEnvironment.h"

namespace vornix {
namespace {

std::optional<std::string> variable(const char* name) {
  const char* value = std::getenv(name);
  return value != nullptr ? std::optional<std::string>(value) : std::nullopt;
}

std::string linkTarget(const char* path) {
  std::array<char, PATH_MAX> buffer{};
  const auto length = ::readlink(path, buffer.data(), buffer.size());
  return length > 0 ? std::string(buffer.data(), static_cast<std::size_t>(length)) : std::string();
}

// The kernel marks a program whose file was replaced or removed while it runs.
std::string withoutDeletedMark(std::string path) {
  constexpr std::string_view kMark = " (deleted)";
  if (path.ends_with(kMark) && ::access(path.c_str(), F_OK) != 0) {
    path.resize(path.size() - kMark.size());
  }
  return path;
}

bool leadsThroughLinks(const char* path) {
  open_how how{};
  how.flags = O_PATH | O_CLOEXEC;
  how.resolve = RESOLVE_NO_SYMLINKS;
  const FileDescriptor file(
      static_cast<int>(::syscall(SYS_openat2, AT_FDCWD, path, &how, sizeof how)));
  return !file.isOpen();
}

// An absolute path as the kernel itself would write it.
bool isPlainPath(const std::string& path) {
  const auto contains = [&path](const char* part) { return path.find(part) != std::string::npos; };
  return path.starts_with('/') && !contains("//") && !contains("/./") && !contains("/../") &&
         !leadsThroughLinks(path.c_str());
}

// The kernel's link is asked only where the path of the start may be another one: a process's
// folder in /proc is made for the first who looks, which costs more than all other files of a usual
// run.
std::string findExecutable() {
  // NOLINTNEXTLINE(performance-no-int-to-ptr): the system hands its addresses out as numbers.
  const auto* started = reinterpret_cast<const char*>(::getauxval(AT_EXECFN));
  if (started != nullptr && isPlainPath(started)) return started;
  return withoutDeletedMark(linkTarget("/proc/self/exe"));
}

// "6.1.0-18-amd64" gives 6, 1 and 0.
OperatingSystemVersion parseRelease(std::string_view release) {
  std::array<int, 3> numbers{};
  for (int& number : numbers) {
    const auto end = release.data() + release.size();
    const auto parsed = std::from_chars(release.data(), end, number);
    if (parsed.ec != std::errc() || parsed.ptr == end || *parsed.ptr != '.') break;
    release.remove_prefix(static_cast<std::size_t>(parsed.ptr - release.data()) + 1);
  }
  return {numbers[0], numbers[1], numbers[2]};
}

class LinuxProcessInfo final : public NSProcessInfo {
 public:
  [[nodiscard]] std::string processName() const override {
    const auto path = executablePath();
    return text::lastPathComponent(path.empty() ? program_invocation_name : path);
  }

  [[nodiscard]] std::int32_t processIdentifier() const override { return ::getpid(); }

  [[nodiscard]] std::optional<std::string> environment(std::string_view name) const override {
    if (name.empty() || name.find_first_of(std::string_view("=\0", 2)) != std::string_view::npos) {
      return std::nullopt;
    }
    return variable(std::string(name).c_str());
  }

  [[nodiscard]] std::string userName() const override {
    const auto account = accountOfUser(::getuid());
    return account && !account->name.empty() ? account->name : std::to_string(::getuid());
  }

  [[nodiscard]] std::string homeDirectory() const override {
    auto home = variable("HOME").value_or("");
    if (!home.starts_with('/')) {
      const auto account = accountOfUser(::getuid());
      home = account && account->home.starts_with('/') ? account->home : "/";
    }
    return std::string(text::withoutTrailingSlashes(home));
  }

  [[nodiscard]] OperatingSystemVersion operatingSystemVersion() const override {
    utsname names{};
    return ::uname(&names) == 0 ? parseRelease(names.release) : OperatingSystemVersion();
  }

  [[nodiscard]] std::string executablePath() const override {
    static const auto& path = *new std::string(findExecutable());
    return path;
  }

  [[nodiscard]] std::vector<std::string> localeLanguages() const override {
    return languagesOfEnvironment(variable);
  }
};

}  // namespace

const NSProcessInfo& NSProcessInfo::processInfo() {
  static const LinuxProcessInfo& info = *new LinuxProcessInfo;
  return info;
}

}  // namespace vornix
