#include "platform/linux/desktop/InstalledIcon.h"

#include <unistd.h>

#include "platform/base/PathText.h"
#include "platform/system/NSProcessInfo.h"

namespace vornix {
std::string installedIcon(const std::string& identifier) {
  const std::string folder =
      text::deletingLastPathComponent(NSProcessInfo::processInfo().executablePath());
  const std::string prefix =
      text::deletingLastPathComponent(text::deletingLastPathComponent(folder));
  const std::string icon = prefix + "/share/icons/hicolor/scalable/apps/" + identifier + ".svg";
  return access(icon.c_str(), R_OK) == 0 ? icon : std::string();
}

}  // namespace vornix
