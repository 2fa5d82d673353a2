#include "platform/linux/desktop/applications/DesktopSession.h"

#include <unistd.h>

#include <array>
#include <climits>
#include <string_view>

#include "platform/base/PathText.h"
#include "platform/base/Text.h"

namespace vornix::desktop {
namespace {

// A variable that is set and not empty.
std::string variable(const NSProcessInfo& process, std::string_view name,
                     const std::string& otherwise) {
  const auto value = process.environment(name);
  return value && !value->empty() ? *value : otherwise;
}

std::vector<std::string> absoluteFolders(const std::string& list) {
  std::vector<std::string> folders = text::split(list, ":");
  std::erase_if(folders, [](const std::string& folder) { return !folder.starts_with('/'); });
  return folders;
}

std::vector<std::string> applicationFoldersOf(const NSProcessInfo& process) {
  const std::string home = text::appendingPathComponent(process.homeDirectory(), ".local/share");
  std::vector<std::string> folders = absoluteFolders(variable(process, "XDG_DATA_HOME", home));
  if (folders.empty()) folders.push_back(home);
  const std::string shared = variable(process, "XDG_DATA_DIRS", "/usr/local/share:/usr/share");
  for (const std::string& folder : absoluteFolders(shared)) folders.push_back(folder);
  for (std::string& folder : folders) folder = text::appendingPathComponent(folder, "applications");
  return folders;
}

std::string localeOf(const NSProcessInfo& process) {
  const std::string language = variable(process, "LANG", "");
  return variable(process, "LC_ALL", variable(process, "LC_MESSAGES", language));
}

std::vector<std::string> environmentOfProcess() {
  std::vector<std::string> environment;
  for (char** variable = environ; variable != nullptr && *variable != nullptr; ++variable)
    environment.emplace_back(*variable);
  return environment;
}

std::string busAddressOf(const NSProcessInfo& process) {
  const std::string folder = variable(process, "XDG_RUNTIME_DIR", "");
  return variable(process, "DBUS_SESSION_BUS_ADDRESS",
                  folder.empty() ? "" : "unix:path=" + folder + "/bus");
}

std::string currentFolder() {
  std::array<char, PATH_MAX> path{};
  return getcwd(path.data(), path.size()) != nullptr ? std::string(path.data()) : std::string("/");
}

}  // namespace

DesktopSession DesktopSession::ofProcess(const NSProcessInfo& process) {
  const std::string programs = text::deletingLastPathComponent(process.executablePath());
  return {.applicationFolders = applicationFoldersOf(process),
          .programFolders = absoluteFolders(variable(
              process, "PATH", "/usr/local/bin:/usr/bin:/bin:/usr/local/games:/usr/games")),
          .locale = localeOf(process),
          .environment = environmentOfProcess(),
          .busAddress = busAddressOf(process),
          .workingDirectory = currentFolder(),
          .user = geteuid(),
          .openTool = text::appendingPathComponent(programs, "vornix-open")};
}

InstalledApplications DesktopSession::installedApplications() const {
  return {applicationFolders, ProgramSearch(programFolders), locale};
}

ProcessTable DesktopSession::processTable() const {
  return {processFolder, user};
}

}  // namespace vornix::desktop
