#include "platform/linux/desktop/LinuxScreen.h"

#include <cstdlib>
#include <mutex>
#include <utility>

#include "platform/linux/desktop/KernelDisplays.h"
#include "platform/linux/desktop/XcbScreen.h"

namespace vornix {
namespace {

class LinuxScreen final : public NSScreen {
 public:
  explicit LinuxScreen(ScreenSources sources) : sources_(std::move(sources)) {}

  [[nodiscard]] std::optional<Size> mainScreenSize() const override {
    std::call_once(asked_, [this] { size_ = ask(); });
    return size_;
  }

 private:
  [[nodiscard]] std::optional<Size> ask() const {
    const bool named = sources_.display && !sources_.display->empty();
    const auto size = named ? xcbScreenSize(*sources_.display, sources_.patience) : std::nullopt;
    return size ? size : kernelDisplaySize(sources_.kernelFolder);
  }

  const ScreenSources sources_;
  mutable std::once_flag asked_;
  mutable std::optional<Size> size_;
};

ScreenSources ownSources() {
  ScreenSources sources;
  if (const char* display = std::getenv("DISPLAY")) {
    sources.display = display;
  }
  return sources;
}

}  // namespace

std::unique_ptr<NSScreen> makeLinuxScreen(ScreenSources sources) {
  return std::make_unique<LinuxScreen>(std::move(sources));
}

const NSScreen& NSScreen::screens() {
  static const NSScreen& screens = *new LinuxScreen(ownSources());
  return screens;
}

}  // namespace vornix
