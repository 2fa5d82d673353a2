#include "platform/linux/desktop/InstalledIcon.h"

#include <unistd.h>

#include <array>
#include <climits>

#include "platform/base/PathText.h"

namespace vornix {
namespace {

std::string runningProgram() {
  std::array<char, PATH_MAX> path{};
  const ssize_t length = readlink("/proc/self/exe", path.data(), path.size());
  return length > 0 ? std::string(path.data(), static_cast<std::size_t>(length)) : std::string();
}

}  // namespace

std::string installedIcon(const std::string& identifier) {
  const std::string folder = text::deletingLastPathComponent(runningProgram());
  const std::string prefix =
      text::deletingLastPathComponent(text::deletingLastPathComponent(folder));
  const std::string icon = prefix + "/share/icons/hicolor/scalable/apps/" + identifier + ".svg";
  return access(icon.c_str(), R_OK) == 0 ? icon : std::string();
}

}  // namespace vornix
