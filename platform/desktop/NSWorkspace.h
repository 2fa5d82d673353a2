#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/base/NSObject.h"
#include "platform/desktop/ApplicationService.h"
#include "platform/desktop/FileViewer.h"

namespace vornix {

inline constexpr std::uint32_t NSWorkspaceLaunchAsync = 0x10000;
inline constexpr std::uint32_t NSWorkspaceLaunchWithoutActivation = 0x200;
inline constexpr std::uint32_t NSApplicationActivateIgnoringOtherApps = 2;

// A snapshot of one running application. Main thread.
class NSRunningApplication : public NSObject {
 public:
  NSRunningApplication(RunningApplicationEntry entry, ApplicationService& service);

  // Empty when it cannot be named.
  [[nodiscard]] const std::string& bundleIdentifier() const { return entry_.bundleIdentifier; }
  [[nodiscard]] std::int32_t processIdentifier() const { return entry_.processIdentifier; }
  // True when the request was sent; nobody waits for its effect.
  bool activateWithOptions(std::uint32_t options);
  bool terminate();

  [[nodiscard]] bool isEqual(const NSObject& other) const override;
  [[nodiscard]] std::string_view className() const override { return "NSRunningApplication"; }

 private:
  RunningApplicationEntry entry_;
  ApplicationService& service_;
};

// The desktop's applications. Main thread.
class NSWorkspace : public NSObject {
 public:
  // Both must outlive the workspace.
  explicit NSWorkspace(ApplicationService& service, FileViewer& viewer = sharedFileViewer());

  // Never destroyed.
  [[nodiscard]] static NSWorkspace& sharedWorkspace();

  [[nodiscard]] virtual std::vector<std::shared_ptr<NSRunningApplication>> runningApplications();
  // Identifiers compare ignoring case; none for one that is not installed.
  [[nodiscard]] virtual std::optional<std::string> absolutePathForAppBundleWithIdentifier(
      std::string_view identifier);
  // Null and an error when it cannot be started. `fileUrl`: of the bundle path.
  [[nodiscard]] virtual std::shared_ptr<NSRunningApplication> launchApplicationAtURL(
      std::string_view fileUrl, std::uint32_t options, const Dictionary& configuration,
      std::optional<NSError>* error);

  // Shows the file's folder with the file selected in it. False, and a diagnostic, when nothing on
  // this desktop can. `root` is not used: file viewers here have no root.
  bool selectFileInFileViewerRootedAtPath(std::string_view file, std::string_view root);

  [[nodiscard]] std::string_view className() const override { return "NSWorkspace"; }

 private:
  ApplicationService& service_;
  FileViewer& viewer_;
};

}  // namespace vornix
