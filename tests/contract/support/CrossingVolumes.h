#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <ctime>
#include <functional>
#include <set>
#include <string>
#include <string_view>

#include "tests/contract/support/FileWorld.h"

namespace vornix::contract {

struct Crossing {
  const char* name;
  const char* from;
  const char* to;
};

// Between the folders "from" and "to", each on a volume of the kind that is asked for.
class CrossingVolumes : public testing::TestWithParam<Crossing> {
 protected:
  void play(const std::function<void(LinuxFileWorld&)>& story) {
    const auto outcome = LinuxFileWorld::play([&](LinuxFileWorld& world) {
      attach(world, "from", GetParam().from);
      attach(world, "to", GetParam().to);
      story(world);
    });
    if (outcome == FakeFileWorld::Outcome::mayNotMount) GTEST_SKIP() << kMayNotMountDisks;
  }

 private:
  static void attach(LinuxFileWorld& world, const std::string& name, std::string_view kind) {
    world.folder(name);
    if (kind == "memory") world.mount(name);
    if (kind == "disk") world.mountImage(name, "");
  }
};

// The code of the error of a move; 0 for none.
[[nodiscard]] std::int64_t moveCode(LinuxFileWorld& world, const std::string& from,
                                    const std::string& to);
void setTimes(const std::string& path, time_t accessed, time_t modified);
void write(const std::string& path, const std::string& contents);
[[nodiscard]] std::set<std::string> namesIn(const std::string& folder);

}  // namespace vornix::contract
