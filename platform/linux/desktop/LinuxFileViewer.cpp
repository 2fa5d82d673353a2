#include "platform/linux/desktop/LinuxFileViewer.h"

#include <algorithm>
#include <optional>
#include <string>

#include "platform/base/Diagnostics.h"
#include "platform/base/FileUrl.h"
#include "platform/base/PathText.h"
#include "platform/base/Text.h"
#include "platform/linux/desktop/ActivationToken.h"
#include "platform/linux/desktop/applications/ApplicationStart.h"
#include "platform/linux/desktop/applications/SessionApplicationBus.h"
#include "platform/linux/files/CanonicalPath.h"

namespace vornix::desktop {
namespace {

constexpr const char* kManager = "org.freedesktop.FileManager1";
constexpr const char* kManagerPath = "/org/freedesktop/FileManager1";

// File managers take "." and ".." out of an address as text, which is wrong behind a link. Other
// links stay: the person knows the folder by that name.
std::optional<std::string> addressable(std::string_view path) {
  const auto steps = text::split(path, "/");
  const bool isPlain = path.starts_with('/') && path.find('\0') == std::string_view::npos &&
                       std::ranges::none_of(steps, [](const std::string& step) {
                         return step == "." || step == "..";
                       });
  return isPlain ? text::appendingPathComponent(path, "") : canonicalPathOf(path);
}

class LinuxFileViewer final : public FileViewer {
 public:
  LinuxFileViewer(SessionBus& bus, ApplicationBus& applications, double patience)
      : bus_(bus), applications_(applications), patience_(patience) {}

  bool select(std::string_view path) override {
    const auto item = addressable(path);
    if (!item) {
      reportDiagnostic("\"" + std::string(path) + "\" cannot be shown: it is in no folder here");
      return false;
    }
    const DesktopSession session = DesktopSession::ofProcess(NSProcessInfo::processInfo());
    std::string token = applications_.takeActivationToken();
    if (token.empty()) token = activationTokenOf(session.environment);
    const auto refusal = askManager(*item, token);
    if (!refusal) return true;
    const auto failure = openFolder(text::deletingLastPathComponent(*item), token, session);
    if (!failure) return true;
    reportDiagnostic("\"" + *item + "\" cannot be shown: " + refusal->message + "; " +
                     failure->localizedDescription);
    return false;
  }

 private:
  [[nodiscard]] std::optional<BusError> askManager(const std::string& item,
                                                   const std::string& token) {
    const BusMethod method{.destination = kManager,
                           .path = kManagerPath,
                           .interface = kManager,
                           .member = "ShowItems",
                           .timeout = patience_};
    const auto url = text::fileUrlWithPath(item, false);
    return bus_
        .call(method,
              [&](BusMessage& message) {
                message.writeStrings({url.value_or("")});
                message.writeString(text::isValidUtf8(token) ? token : "");
              })
        .error;
  }

  [[nodiscard]] std::optional<NSError> openFolder(const std::string& folder,
                                                  const std::string& token,
                                                  const DesktopSession& session) {
    const DesktopEntry opener{.identifier = "xdg-open", .exec = "xdg-open %f"};
    const ApplicationStartRequest request{
        .files = {folder}, .arguments = {}, .activationToken = token};
    std::optional<NSError> error;
    if (startApplication(opener, request, session, applications_, error)) return std::nullopt;
    return error;
  }

  SessionBus& bus_;
  ApplicationBus& applications_;
  double patience_;
};

}  // namespace

std::unique_ptr<FileViewer> makeFileViewer(SessionBus& bus, ApplicationBus& applications,
                                           double patience) {
  return std::make_unique<LinuxFileViewer>(bus, applications, patience);
}

}  // namespace vornix::desktop

namespace vornix {

FileViewer& sharedFileViewer() {
  static auto& viewer =
      *desktop::makeFileViewer(SessionBus::shared(), desktop::sharedApplicationBus()).release();
  return viewer;
}

}  // namespace vornix
