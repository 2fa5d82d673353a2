#include "platform/linux/desktop/LinuxScreen.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <memory>

#include "tests/support/ScratchFolder.h"
#include "tests/support/VirtualDisplay.h"

namespace vornix {
namespace {

class LinuxScreenTest : public testing::Test {
 protected:
  void monitor(const std::string& name, const char* status, const char* modes,
               const char* enabled = "enabled\n") {
    kernel_.write(name + "/status", status);
    kernel_.write(name + "/modes", modes);
    kernel_.write(name + "/enabled", enabled);
  }
  [[nodiscard]] std::string ask(const std::optional<std::string>& display,
                                std::chrono::milliseconds patience = std::chrono::minutes(1)) {
    const auto screen =
        makeLinuxScreen({.display = display, .kernelFolder = kernel_.path(), .patience = patience});
    const auto size = screen->mainScreenSize();
    return size ? std::to_string(static_cast<int>(size->width)) + "x" +
                      std::to_string(static_cast<int>(size->height))
                : "none";
  }

  tests::ScratchFolder kernel_;
};

TEST_F(LinuxScreenTest, AsksTheDisplayBeforeTheKernel) {
  const tests::VirtualDisplay display(800, 600);
  monitor("card0-DP-1", "connected\n", "1920x1080\n");
  EXPECT_EQ(ask(display.name()), "800x600");
  EXPECT_EQ(ask(display.name() + ".0"), "800x600");
}

TEST_F(LinuxScreenTest, TakesTheKernelsPreferredModeWithoutADisplay) {
  monitor("card0-DP-1", "disconnected\n", "");
  monitor("card0-HDMI-A-1", "connected\n", "2560x1440\n1920x1080\n");
  EXPECT_EQ(ask(std::nullopt), "2560x1440");
  EXPECT_EQ(ask(""), "2560x1440");
}

TEST_F(LinuxScreenTest, PrefersAMonitorThatShowsSomething) {
  monitor("card0-DP-1", "connected\n", "3840x2160\n", "disabled\n");
  monitor("card0-eDP-1", "connected\n", "1366x768\n");
  EXPECT_EQ(ask(std::nullopt), "1366x768");
}

TEST_F(LinuxScreenTest, ReadsAnInterlacedMode) {
  monitor("card0-HDMI-A-1", "connected\n", "1920x1080i\n");
  EXPECT_EQ(ask(std::nullopt), "1920x1080");
}

TEST_F(LinuxScreenTest, HasNoSizeWhereTheKernelNamesNoMode) {
  for (const char* modes : {"", "\n", "x1080\n", "1920\n", "1920x\n", "0x0\n", "99999999999x1\n"}) {
    monitor("card0-HDMI-A-1", "connected\n", modes);
    EXPECT_EQ(ask(std::nullopt), "none") << modes;
  }
}

TEST_F(LinuxScreenTest, AsksTheKernelWhereTheDisplayIsGone) {
  monitor("card0-DP-1", "connected\n", "1920x1080\n");
  for (const char* display : {":987654", "nonsense", ":x", "/nonexistent/socket:0"}) {
    EXPECT_EQ(ask(display), "1920x1080") << display;
  }
}

TEST_F(LinuxScreenTest, DoesNotHangOnADisplayThatNeverAnswers) {
  const tests::VirtualDisplay display(800, 600);
  monitor("card0-DP-1", "connected\n", "1920x1080\n");
  kill(display.processIdentifier(), SIGSTOP);
  EXPECT_EQ(ask(display.name(), std::chrono::milliseconds(100)), "1920x1080");
  kill(display.processIdentifier(), SIGCONT);
}

TEST_F(LinuxScreenTest, AsksOnce) {
  auto display = std::make_unique<tests::VirtualDisplay>(800, 600);
  const auto screen = makeLinuxScreen({.display = display->name(),
                                       .kernelFolder = kernel_.path(),
                                       .patience = std::chrono::minutes(1)});
  ASSERT_TRUE(screen->mainScreenSize());
  display.reset();
  ASSERT_TRUE(screen->mainScreenSize());
  EXPECT_EQ(screen->mainScreenSize()->width, 800);
}

TEST(Screens, AreAskedThroughTheDisplayOfTheEnvironment) {
  const tests::VirtualDisplay display(640, 480);
  setenv("DISPLAY", display.name().c_str(), 1);
  const auto size = NSScreen::screens().mainScreenSize();
  ASSERT_TRUE(size);
  EXPECT_EQ(size->width, 640);
}

}  // namespace
}  // namespace vornix
