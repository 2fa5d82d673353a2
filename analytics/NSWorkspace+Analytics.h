#pragma once

#include <string>

#include "platform/desktop/NSWorkspace.h"
#include "settings/VXABTester.h"

// The tracker's descriptive texts for those who have no tracker. Main thread.
namespace vornix {

// "Vornix".
[[nodiscard]] std::string applicationName(const NSWorkspace& self);

// The main application's version, "Unknown" where it is not installed or tells none, followed by
// "-" and the code of the A/B tests where there is one. Computed anew by each call.
[[nodiscard]] std::string applicationVersion(NSWorkspace& self,
                                             VXABTester& tester = *VXABTester::sharedTester());

// As `userAgentText`, for this version and system.
[[nodiscard]] std::string userAgentString(NSWorkspace& self);
// As `systemInfoText`, for the main screen, no main window, and the person's languages.
[[nodiscard]] std::string systemInfo(const NSWorkspace& self);

}  // namespace vornix
