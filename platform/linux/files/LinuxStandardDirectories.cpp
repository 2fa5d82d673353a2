#include "platform/linux/files/LinuxStandardDirectories.h"

#include <unistd.h>

#include <cerrno>

#include "platform/base/Diagnostics.h"
#include "platform/base/NSError.h"
#include "platform/base/PathText.h"
#include "platform/linux/files/UserDirectories.h"
#include "platform/linux/preferences/FileBytes.h"
#include "platform/linux/preferences/HomeSkeleton.h"
#include "platform/linux/system/Account.h"

namespace vornix {
namespace {

constexpr std::size_t kLargestUserDirectoriesFile = std::size_t{1} << 20U;

}  // namespace

std::string LinuxStandardDirectories::homeDirectory() const {
  return process_.homeDirectory();
}

std::optional<std::string> LinuxStandardDirectories::homeDirectoryForUser(
    std::string_view user) const {
  const bool canBeName = !user.empty() && user.find('\0') == std::string_view::npos;
  auto account = canBeName ? accountNamed(std::string(user)) : std::nullopt;
  if (!account || !account->home.starts_with('/')) return std::nullopt;
  return std::string(text::withoutTrailingSlashes(account->home));
}

std::string LinuxStandardDirectories::temporaryDirectory() const {
  const std::string folder = absoluteVariable("TMPDIR").value_or("/tmp");
  return folder == "/" ? folder : folder + "/";
}

std::vector<std::string> LinuxStandardDirectories::directories(
    NSSearchPathDirectory kind, NSSearchPathDomainMask domains) const {
  std::vector<std::string> paths;
  const auto add = [&paths, domains](NSSearchPathDomainMask domain, const auto& path) {
    if ((domains & domain) != 0) paths.emplace_back(path());
  };
  const auto local = [&add](const char* path) { add(NSLocalDomainMask, [path] { return path; }); };
  switch (kind) {
    case NSLibraryDirectory:
      add(NSUserDomainMask, [this] { return library(); });
      local("/Library");
      break;
    case NSCachesDirectory:
      add(NSUserDomainMask, [this] { return baseDirectory("XDG_CACHE_HOME", ".cache"); });
      local("/var/cache");
      break;
    case NSApplicationSupportDirectory:
      add(NSUserDomainMask, [this] { return baseDirectory("XDG_DATA_HOME", ".local/share"); });
      local("/usr/local/share");
      break;
    case NSDownloadsDirectory:
      add(NSUserDomainMask, [this] { return downloads(); });
      break;
    default:
      break;
  }
  return paths;
}

std::size_t LinuxStandardDirectories::confstr(int name, std::span<char> buffer) const {
  return ::confstr(name, buffer.data(), buffer.size());
}

std::optional<std::string> LinuxStandardDirectories::absoluteVariable(std::string_view name) const {
  auto value = process_.environment(name);
  if (!value || !value->starts_with('/')) return std::nullopt;
  return std::string(text::withoutTrailingSlashes(*value));
}

std::string LinuxStandardDirectories::baseDirectory(std::string_view variable,
                                                    std::string_view inHome) const {
  auto folder = absoluteVariable(variable);
  return folder ? *std::move(folder) : text::appendingPathComponent(homeDirectory(), inHome);
}

std::string LinuxStandardDirectories::library() const {
  const std::string home = homeDirectory();
  {
    const Lock lock(mutex_);
    if (preparedHome_ != home) makeHomeSkeleton(home);
    preparedHome_ = home;
  }
  return text::appendingPathComponent(home, "Library");
}

std::string LinuxStandardDirectories::downloads() const {
  const std::string home = homeDirectory();
  const std::string path = baseDirectory("XDG_CONFIG_HOME", ".config") + "/user-dirs.dirs";
  const FileBytes file = readFileBytes(path, kLargestUserDirectoriesFile);
  if (file.error != 0 && file.error != ENOENT && file.error != ENOTDIR)
    reportDiagnostic(posixError(file.error, path).localizedDescription);
  return userDirectory(file.error == 0 ? file.bytes : std::string(), "XDG_DOWNLOAD_DIR", home)
      .value_or(text::appendingPathComponent(home, "Downloads"));
}

const StandardDirectories& sharedStandardDirectories() {
  static const auto& directories = *new LinuxStandardDirectories(NSProcessInfo::processInfo());
  return directories;
}

}  // namespace vornix
