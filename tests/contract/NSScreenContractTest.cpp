#include <gtest/gtest.h>

#include <memory>

#include "platform/linux/desktop/LinuxScreen.h"
#include "tests/fakes/FakeScreen.h"
#include "tests/support/ScratchFolder.h"
#include "tests/support/VirtualDisplay.h"

namespace vornix {
namespace {

// Screens of one size, and a machine without any, on both sides of the interface.
class Screens {
 public:
  virtual ~Screens() = default;
  virtual const NSScreen& sized() = 0;
  virtual const NSScreen& absent() = 0;
};

class FakeScreens final : public Screens {
 public:
  FakeScreens() {
    sized_.size = Size{.width = 1234, .height = 567};
    absent_.size.reset();
  }
  const NSScreen& sized() override { return sized_; }
  const NSScreen& absent() override { return absent_; }

 private:
  fakes::FakeScreen sized_;
  fakes::FakeScreen absent_;
};

class LinuxScreens final : public Screens {
 public:
  const NSScreen& sized() override { return *sized_; }
  const NSScreen& absent() override { return *absent_; }

 private:
  tests::ScratchFolder empty_;
  tests::VirtualDisplay display_{1234, 567};
  std::unique_ptr<NSScreen> sized_ = makeLinuxScreen({.display = display_.name(),
                                                      .kernelFolder = empty_.path(),
                                                      .patience = std::chrono::minutes(1)});
  std::unique_ptr<NSScreen> absent_ =
      makeLinuxScreen({.display = std::nullopt, .kernelFolder = empty_.path("none")});
};

template <typename S>
class NSScreenContract : public testing::Test {
 protected:
  S screens_;
};

using Implementations = testing::Types<FakeScreens, LinuxScreens>;
TYPED_TEST_SUITE(NSScreenContract, Implementations);

TYPED_TEST(NSScreenContract, TellsTheMainScreensSizeInPixels) {
  const auto size = this->screens_.sized().mainScreenSize();
  ASSERT_TRUE(size);
  EXPECT_EQ(size->width, 1234);
  EXPECT_EQ(size->height, 567);
}

TYPED_TEST(NSScreenContract, HasNoSizeWithoutAScreen) {
  EXPECT_FALSE(this->screens_.absent().mainScreenSize());
}

}  // namespace
}  // namespace vornix
