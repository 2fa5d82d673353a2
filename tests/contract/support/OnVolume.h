#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>

#include "tests/contract/support/FileWorld.h"
#include "tests/contract/support/KindOfVolume.h"

namespace vornix::contract {

// Suites that are run on every kind of volume.
class OnVolume : public testing::TestWithParam<KindOfVolume> {
 protected:
  void SetUp() override {
    if (GetParam() != KindOfVolume::ext4) return;
    const auto folder = folderOn(KindOfVolume::ext4);
    if (!folder) GTEST_SKIP() << "NOT TESTED: no folder to write to on ext4";
    setenv("TMPDIR", folder->c_str(), 1);
  }

  // The story's items are in its folder "here", on the kind of volume that is asked for.
  static void play(const std::function<void(LinuxFileWorld&)>& story) {
    const auto outcome = LinuxFileWorld::play([&](LinuxFileWorld& world) {
      world.folder("here");
      if (GetParam() == KindOfVolume::tmpfs) world.mount("here");
      story(world);
    });
    if (outcome == FakeFileWorld::Outcome::mayNotMount) GTEST_SKIP() << kMayNotMount;
  }
};

// Behind the suite's own class.
#define VORNIX_ON_EVERY_VOLUME(suite)                                                         \
  INSTANTIATE_TEST_SUITE_P(, suite, testing::Values(KindOfVolume::ext4, KindOfVolume::tmpfs), \
                           [](const auto& kind) { return nameOf(kind.param); })

}  // namespace vornix::contract
