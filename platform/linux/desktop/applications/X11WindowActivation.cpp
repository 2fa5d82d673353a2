#include <xcb/xcb.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "platform/base/Diagnostics.h"
#include "platform/base/Text.h"
#include "platform/linux/desktop/applications/WindowActivation.h"
#include "platform/linux/system/CMemory.h"
#include "platform/linux/system/SharedLibrary.h"

namespace vornix::desktop {
namespace {

#define VORNIX_XCB_FUNCTIONS(X)    \
  X(xcb_connect)                   \
  X(xcb_connection_has_error)      \
  X(xcb_disconnect)                \
  X(xcb_get_property)              \
  X(xcb_get_property_reply)        \
  X(xcb_get_property_value)        \
  X(xcb_get_property_value_length) \
  X(xcb_get_setup)                 \
  X(xcb_intern_atom)               \
  X(xcb_intern_atom_reply)         \
  X(xcb_screen_next)               \
  X(xcb_send_event)                \
  X(xcb_setup_roots_iterator)

struct Xcb {
// NOLINTNEXTLINE(bugprone-macro-parentheses): a name to declare takes none.
#define VORNIX_DECLARE(function) decltype(&::function) function = nullptr;
  VORNIX_XCB_FUNCTIONS(VORNIX_DECLARE)
#undef VORNIX_DECLARE
};

bool bindAll(const SharedLibrary& library, Xcb& xcb, std::string* why) {
#define VORNIX_BIND(function) \
  if (!library.bind(xcb.function, #function, why)) return false;
  VORNIX_XCB_FUNCTIONS(VORNIX_BIND)
#undef VORNIX_BIND
  return true;
}

std::optional<Xcb> loadXcb() {
  std::string why;
  Xcb xcb;
  const auto library = SharedLibrary::open("libxcb.so.1", &why);
  if (library && bindAll(*library, xcb, &why)) return xcb;
  reportDiagnostic("windows cannot be brought to the front: " + why);
  return std::nullopt;
}

// What a request of an application launcher counts as; a window manager heeds it without asking
// when the person last touched us.
constexpr std::uint32_t kSourceIsLauncher = 2;
constexpr xcb_window_t kNoWindow = XCB_WINDOW_NONE;
constexpr std::uint32_t kMostWindows = 4096;

class Display {
 public:
  Display(const Xcb& xcb, const std::string& name) : xcb_(xcb) {
    int screen = 0;
    connection_ = xcb_.xcb_connect(name.empty() ? nullptr : name.c_str(), &screen);
    if (isOpen()) root_ = rootOfScreen(screen);
  }
  Display(const Display&) = delete;
  Display& operator=(const Display&) = delete;
  ~Display() { xcb_.xcb_disconnect(connection_); }

  [[nodiscard]] bool isOpen() const { return xcb_.xcb_connection_has_error(connection_) == 0; }

  [[nodiscard]] xcb_window_t windowOf(std::int32_t process, const std::string& identifier) const {
    const auto windows = numbers(root_, atom("_NET_CLIENT_LIST"), XCB_ATOM_WINDOW, kMostWindows);
    const xcb_atom_t processAtom = atom("_NET_WM_PID");
    for (const xcb_window_t window : windows) {
      const auto owner = numbers(window, processAtom, XCB_ATOM_CARDINAL, 1);
      if (process > 0 && owner == std::vector{static_cast<std::uint32_t>(process)}) return window;
    }
    const auto ofClass = std::ranges::find_if(
        windows, [&](xcb_window_t window) { return hasClass(window, identifier); });
    return ofClass == windows.end() ? kNoWindow : *ofClass;
  }

  [[nodiscard]] bool activate(xcb_window_t window) const {
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = window;
    event.type = atom("_NET_ACTIVE_WINDOW");
    event.data.data32[0] = kSourceIsLauncher;
    event.data.data32[1] = XCB_CURRENT_TIME;
    xcb_.xcb_send_event(connection_, 0, root_,
                        XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                        reinterpret_cast<const char*>(&event));
    // Closing the connection at once could lose the request: an answer to a later one means that
    // the server has taken it.
    return atom("_NET_ACTIVE_WINDOW") != XCB_ATOM_NONE;
  }

 private:
  [[nodiscard]] xcb_window_t rootOfScreen(int number) const {
    auto screens = xcb_.xcb_setup_roots_iterator(xcb_.xcb_get_setup(connection_));
    while (number-- > 0 && screens.rem > 1) xcb_.xcb_screen_next(&screens);
    return screens.rem > 0 ? screens.data->root : kNoWindow;
  }

  [[nodiscard]] xcb_atom_t atom(std::string_view name) const {
    const auto cookie =
        xcb_.xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(name.size()), name.data());
    const CMemory<xcb_intern_atom_reply_t> reply(
        xcb_.xcb_intern_atom_reply(connection_, cookie, nullptr));
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
  }

  [[nodiscard]] CMemory<xcb_get_property_reply_t> property(xcb_window_t window, xcb_atom_t name,
                                                           xcb_atom_t type,
                                                           std::uint32_t words) const {
    const auto cookie = xcb_.xcb_get_property(connection_, 0, window, name, type, 0, words);
    return CMemory<xcb_get_property_reply_t>(
        xcb_.xcb_get_property_reply(connection_, cookie, nullptr));
  }

  [[nodiscard]] std::vector<std::uint32_t> numbers(xcb_window_t window, xcb_atom_t name,
                                                   xcb_atom_t type, std::uint32_t most) const {
    const auto reply = property(window, name, type, most);
    if (!reply || reply->format != 32) return {};
    const auto* first = static_cast<const std::uint32_t*>(xcb_.xcb_get_property_value(reply.get()));
    const auto bytes = static_cast<std::size_t>(xcb_.xcb_get_property_value_length(reply.get()));
    return {first, first + bytes / sizeof(std::uint32_t)};
  }

  // The property holds the instance's and the class's name, each with a zero byte behind it.
  [[nodiscard]] bool hasClass(xcb_window_t window, const std::string& name) const {
    const auto reply = property(window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 256);
    if (!reply || reply->format != 8 || name.empty()) return false;
    const std::string_view names(
        static_cast<const char*>(xcb_.xcb_get_property_value(reply.get())),
        static_cast<std::size_t>(xcb_.xcb_get_property_value_length(reply.get())));
    const auto pieces = text::split(names, std::string_view("\0", 1));
    return std::ranges::any_of(pieces, [&name](const std::string& piece) {
      return text::asciiEqualIgnoringCase(piece, name);
    });
  }

  const Xcb& xcb_;
  xcb_connection_t* connection_ = nullptr;
  xcb_window_t root_ = kNoWindow;
};

class X11WindowActivation final : public WindowActivation {
 public:
  explicit X11WindowActivation(std::string display) : display_(std::move(display)) {}

  bool bringToFront(std::int32_t process, const std::string& identifier) override {
    // NOLINTNEXTLINE(concurrency-mt-unsafe): nothing here changes the environment.
    const bool hasDisplay = !display_.empty() || getenv("DISPLAY") != nullptr;
    if (!hasDisplay) return false;
    if (!xcb_) xcb_ = loadXcb();
    if (!xcb_) return false;
    const Display display(*xcb_, display_);
    if (!display.isOpen()) return false;
    const xcb_window_t window = display.windowOf(process, identifier);
    return window != kNoWindow && display.activate(window);
  }

 private:
  std::string display_;
  std::optional<Xcb> xcb_;
};

}  // namespace

std::unique_ptr<WindowActivation> makeX11WindowActivation(std::string display) {
  return std::make_unique<X11WindowActivation>(std::move(display));
}

}  // namespace vornix::desktop
