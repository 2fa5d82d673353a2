#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/linux/desktop/applications/InstalledApplications.h"
#include "platform/linux/desktop/applications/ProcessTable.h"
#include "platform/system/NSProcessInfo.h"

namespace vornix::desktop {

// Where the applications of a session are installed, run and started.
struct DesktopSession {
  // Folders of desktop entries, most important first.
  std::vector<std::string> applicationFolders;
  // Folders of programs, most important first.
  std::vector<std::string> programFolders;
  // As the environment writes it ("de_DE.UTF-8"); empty for none.
  std::string locale;
  // What started applications inherit, "NAME=VALUE".
  std::vector<std::string> environment;
  // Of its message bus; empty where nothing names one.
  std::string busAddress;
  // Files named without a folder are in this one.
  std::string workingDirectory;
  // Where the kernel shows its processes.
  std::string processFolder = "/proc";
  std::uint32_t user = 0;
  // The program that opens an application by its identifier.
  std::string openTool;

  // The session that this process belongs to.
  [[nodiscard]] static DesktopSession ofProcess(const NSProcessInfo& process);

  [[nodiscard]] InstalledApplications installedApplications() const;
  [[nodiscard]] ProcessTable processTable() const;
};

}  // namespace vornix::desktop
