#pragma once

#include <cstdint>
#include <memory>
#include <string>

namespace vornix::desktop {

// Brings windows to the front. Main thread.
class WindowActivation {
 public:
  virtual ~WindowActivation() = default;

  // Asks for a window of that process, else for one whose class is `identifier`. True when there
  // was one and the window manager was asked.
  virtual bool bringToFront(std::int32_t process, const std::string& identifier) = 0;
};

// Of the X server that `display` names, empty for the environment's. Connects for each request;
// false where there is no such server.
[[nodiscard]] std::unique_ptr<WindowActivation> makeX11WindowActivation(std::string display = {});

}  // namespace vornix::desktop
