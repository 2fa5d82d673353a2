#include "platform/linux/desktop/XcbScreen.h"

#include <exception>
#include <future>
#include <thread>
#include <utility>

#include "platform/linux/desktop/XcbLibrary.h"
#include "platform/linux/system/CMemory.h"

namespace vornix {
namespace {

// Replies are the caller's to free.
template <typename T>
CMemory<T> owned(T* reply) {
  return CMemory<T>(reply);
}

class Display {
 public:
  Display(const XcbLibrary& xcb, const std::string& name)
      : xcb_(xcb), connection_(xcb.connect(name.c_str(), &number_)) {}
  // A connection that failed is released in the same way.
  ~Display() { xcb_.disconnect(connection_); }
  Display(const Display&) = delete;
  Display& operator=(const Display&) = delete;

  [[nodiscard]] std::optional<Size> size() const;

 private:
  [[nodiscard]] const xcb_screen_t* screen() const;
  [[nodiscard]] bool tellsOutputsApart() const;
  [[nodiscard]] std::optional<Size> sizeOfPrimary(xcb_window_t root) const;
  [[nodiscard]] std::optional<Size> sizeOfFirstLit(xcb_window_t root) const;
  [[nodiscard]] std::optional<Size> sizeOf(xcb_randr_output_t output) const;

  const XcbLibrary& xcb_;
  int number_ = 0;
  xcb_connection_t* connection_;
};

const xcb_screen_t* Display::screen() const {
  auto screens = xcb_.roots(xcb_.setup(connection_));
  for (int index = 0; index < number_ && screens.rem > 1; ++index) {
    xcb_.nextScreen(&screens);
  }
  return screens.rem > 0 ? screens.data : nullptr;
}

bool Display::tellsOutputsApart() const {
  const xcb_query_extension_reply_t* extension = xcb_.extension(connection_, xcb_.randr);
  if (extension == nullptr || extension->present == 0) {
    return false;
  }
  const auto version =
      owned(xcb_.queryVersionReply(connection_, xcb_.queryVersion(connection_, 1, 3), nullptr));
  return version != nullptr && (version->major_version > 1 ||
                                (version->major_version == 1 && version->minor_version >= 3));
}

std::optional<Size> Display::sizeOf(xcb_randr_output_t output) const {
  const auto info = owned(xcb_.outputInfoReply(
      connection_, xcb_.outputInfo(connection_, output, XCB_CURRENT_TIME), nullptr));
  if (info == nullptr || info->crtc == XCB_NONE) {
    return std::nullopt;
  }
  const auto crtc = owned(xcb_.crtcInfoReply(
      connection_, xcb_.crtcInfo(connection_, info->crtc, XCB_CURRENT_TIME), nullptr));
  if (crtc == nullptr || crtc->width == 0 || crtc->height == 0) {
    return std::nullopt;
  }
  return Size{.width = static_cast<double>(crtc->width),
              .height = static_cast<double>(crtc->height)};
}

std::optional<Size> Display::sizeOfPrimary(xcb_window_t root) const {
  const auto primary =
      owned(xcb_.primaryReply(connection_, xcb_.primary(connection_, root), nullptr));
  return primary != nullptr && primary->output != XCB_NONE ? sizeOf(primary->output) : std::nullopt;
}

std::optional<Size> Display::sizeOfFirstLit(xcb_window_t root) const {
  const auto resources =
      owned(xcb_.resourcesReply(connection_, xcb_.resources(connection_, root), nullptr));
  const int count = resources != nullptr ? xcb_.outputCount(resources.get()) : 0;
  for (int index = 0; index < count; ++index) {
    if (const auto size = sizeOf(xcb_.outputs(resources.get())[index])) {
      return size;
    }
  }
  return std::nullopt;
}

std::optional<Size> Display::size() const {
  const xcb_screen_t* screen = xcb_.hasError(connection_) == 0 ? this->screen() : nullptr;
  if (screen == nullptr) {
    return std::nullopt;
  }
  std::optional<Size> size;
  if (tellsOutputsApart()) {
    size = sizeOfPrimary(screen->root);
    size = size ? size : sizeOfFirstLit(screen->root);
  }
  return size ? size
              : Size{.width = static_cast<double>(screen->width_in_pixels),
                     .height = static_cast<double>(screen->height_in_pixels)};
}

std::optional<Size> ask(const std::string& display) {
  const auto xcb = XcbLibrary::load();
  return xcb ? Display(*xcb, display).size() : std::nullopt;
}

}  // namespace

std::optional<Size> xcbScreenSize(const std::string& display, std::chrono::milliseconds patience) {
  try {
    // The library cannot be told to give up, so a thread waits for a server that never answers.
    std::packaged_task<std::optional<Size>()> question([display] { return ask(display); });
    std::future<std::optional<Size>> answer = question.get_future();
    std::thread(std::move(question)).detach();
    return answer.wait_for(patience) == std::future_status::ready ? answer.get() : std::nullopt;
  } catch (const std::exception&) {
    return std::nullopt;
  }
}

}  // namespace vornix
