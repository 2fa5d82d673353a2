#include "platform/desktop/NSScreen.h"

#include "tests/fakes/FakeScreen.h"

namespace vornix {

fakes::FakeScreen& fakes::processScreen() {
  static auto& screen = *new FakeScreen;
  return screen;
}

const NSScreen& NSScreen::screens() {
  return fakes::processScreen();
}

}  // namespace vornix
