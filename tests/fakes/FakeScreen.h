#pragma once

#include "platform/desktop/NSScreen.h"

namespace vornix::fakes {

// A screen of any size, or none. Set before it is read.
class FakeScreen final : public NSScreen {
 public:
  std::optional<Size> size = Size{.width = 1920, .height = 1080};

  [[nodiscard]] std::optional<Size> mainScreenSize() const override { return size; }
};

// The one that `NSScreen::screens` answers on the fake platform.
FakeScreen& processScreen();

}  // namespace vornix::fakes
