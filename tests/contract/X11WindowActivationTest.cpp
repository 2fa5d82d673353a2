#include <gtest/gtest.h>
#include <unistd.h>
#include <xcb/xcb.h>

#include <cstring>
#include <memory>

#include "platform/linux/desktop/applications/WindowActivation.h"
#include "platform/linux/system/CMemory.h"
#include "tests/support/VirtualDisplay.h"

namespace vornix::desktop {
namespace {

// A client with windows that at the same time plays the window manager.
class WindowManager {
 public:
  explicit WindowManager(const std::string& display)
      : connection_(xcb_connect(display.c_str(), nullptr)) {
    root_ = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root;
    const std::uint32_t events = XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT;
    xcb_change_window_attributes(connection_, root_, XCB_CW_EVENT_MASK, &events);
  }
  WindowManager(const WindowManager&) = delete;
  WindowManager& operator=(const WindowManager&) = delete;
  ~WindowManager() { xcb_disconnect(connection_); }

  xcb_window_t addWindow(std::uint32_t process, const std::string& className) {
    const xcb_window_t window = xcb_generate_id(connection_);
    xcb_create_window(connection_, XCB_COPY_FROM_PARENT, window, root_, 0, 0, 10, 10, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    if (process != 0) setNumbers(window, "_NET_WM_PID", XCB_ATOM_CARDINAL, {process});
    const std::string names = "instance" + std::string(1, '\0') + className + '\0';
    xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_CLASS,
                        XCB_ATOM_STRING, 8, static_cast<std::uint32_t>(names.size()), names.data());
    windows_.push_back(window);
    setNumbers(root_, "_NET_CLIENT_LIST", XCB_ATOM_WINDOW, windows_);
    synchronize();
    return window;
  }

  // The next request that reaches the manager.
  xcb_client_message_event_t nextRequest() {
    while (true) {
      const CMemory<xcb_generic_event_t> event(xcb_wait_for_event(connection_));
      xcb_client_message_event_t request{};
      if (event == nullptr) return request;
      if ((event->response_type & 0x7F) != XCB_CLIENT_MESSAGE) continue;
      std::memcpy(&request, event.get(), sizeof request);
      return request;
    }
  }

  xcb_atom_t atom(const std::string& name) {
    const auto cookie =
        xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(name.size()), name.c_str());
    const CMemory<xcb_intern_atom_reply_t> reply(
        xcb_intern_atom_reply(connection_, cookie, nullptr));
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
  }

 private:
  void setNumbers(xcb_window_t window, const std::string& name, xcb_atom_t type,
                  const std::vector<std::uint32_t>& numbers) {
    xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window, atom(name), type, 32,
                        static_cast<std::uint32_t>(numbers.size()), numbers.data());
  }

  // An answer means that everything before it has been carried out.
  void synchronize() { static_cast<void>(atom("WM_NAME")); }

  xcb_connection_t* connection_;
  xcb_window_t root_ = 0;
  std::vector<xcb_window_t> windows_;
};

class X11WindowActivationTest : public testing::Test {
 protected:
  tests::VirtualDisplay display{320, 240};
  WindowManager manager{display.name()};
  std::unique_ptr<WindowActivation> activation = makeX11WindowActivation(display.name());
};

TEST_F(X11WindowActivationTest, AsksTheWindowManagerAsALauncherForTheWindowOfTheProcess) {
  manager.addWindow(4710, "other");
  const auto window = manager.addWindow(4711, "app");

  ASSERT_TRUE(activation->bringToFront(4711, "org.example.App"));

  const auto request = manager.nextRequest();
  EXPECT_EQ(request.window, window);
  EXPECT_EQ(request.type, manager.atom("_NET_ACTIVE_WINDOW"));
  EXPECT_EQ(request.format, 32);
  EXPECT_EQ(request.data.data32[0], 2U);
}

TEST_F(X11WindowActivationTest, TakesAWindowOfTheApplicationsClassWhereNoProcessFits) {
  manager.addWindow(4711, "other");
  const auto window = manager.addWindow(0, "Org.Example.App");

  ASSERT_TRUE(activation->bringToFront(99, "org.example.app"));

  EXPECT_EQ(manager.nextRequest().window, window);
}

TEST_F(X11WindowActivationTest, DoesNothingWithoutASuitableWindow) {
  EXPECT_FALSE(activation->bringToFront(4711, "org.example.App"));
  manager.addWindow(4711, "other");
  EXPECT_FALSE(activation->bringToFront(4712, "org.example.App"));
  EXPECT_FALSE(activation->bringToFront(0, ""));
}

TEST(X11WindowActivation, DoesNothingWithoutADisplay) {
  EXPECT_FALSE(makeX11WindowActivation(":987654")->bringToFront(getpid(), "org.example.App"));
  unsetenv("DISPLAY");
  EXPECT_FALSE(makeX11WindowActivation()->bringToFront(getpid(), "org.example.App"));
}

}  // namespace
}  // namespace vornix::desktop
