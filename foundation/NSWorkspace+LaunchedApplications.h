#pragma once

#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "platform/desktop/NSWorkspace.h"

// Running applications by bundle identifier. Identifiers compare with case, but for
// `runningApplicationsWithBundleID`; the empty one names no application. Synchronous; main thread.
namespace vornix {

inline constexpr std::uint32_t VXForegroundLaunchOptions = NSWorkspaceLaunchAsync;
inline constexpr std::uint32_t VXBackgroundLaunchOptions =
    NSWorkspaceLaunchAsync | NSWorkspaceLaunchWithoutActivation;

// False for an absent identifier, without looking.
[[nodiscard]] bool isApplicationRunning(NSWorkspace& self,
                                        std::optional<std::string_view> bundleID);

// The first one in launch order, or null. Looks at the shared workspace, whatever `self` is.
[[nodiscard]] std::shared_ptr<NSRunningApplication> runningApplication(NSWorkspace& self,
                                                                       std::string_view bundleID);

// All of the receiver's whose identifier is equal ignoring case, in launch order.
[[nodiscard]] std::vector<std::shared_ptr<NSRunningApplication>> runningApplicationsWithBundleID(
    NSWorkspace& self, std::string_view bundleID);

// Starts the application, or brings the running one to the front; false when it is not installed
// or cannot be started.
bool launchApplicationWithBundleID(NSWorkspace& self, std::string_view bundleID);
// The same without bringing it to the front.
bool launchApplicationInBackgroundWithBundleID(NSWorkspace& self, std::string_view bundleID);

// Asks the receiver's first one to end; true when the request was sent, false when none runs. The
// application is put into `forApplication`, which stays as it is when none runs.
bool terminateApplicationWithBundleID(
    NSWorkspace& self, std::string_view bundleID,
    std::shared_ptr<NSRunningApplication>* forApplication = nullptr);

}  // namespace vornix
