#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>

#include "fs/NSFileManager+FileModificationsAdditions.h"
#include "tests/contract/support/CrossingVolumes.h"
#include "tests/contract/support/FileWorld.h"
#include "tests/contract/support/ForkedProcess.h"

namespace vornix::contract {
namespace {

namespace fs = std::filesystem;

class KilledMove : public CrossingVolumes {};

INSTANTIATE_TEST_SUITE_P(, KilledMove,
                         testing::Values(Crossing{"FromMemory", "memory", "memory"},
                                         Crossing{"FromDisk", "here", "memory"}),
                         [](const auto& each) { return std::string(each.param.name); });

std::string contentsOf(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

constexpr int kFiles = 24;

std::string nameOfFile(int number) {
  return "tree/" + std::to_string(number % 4) + "/" + std::to_string(number);
}

std::string contentsOfFile(int number) {
  return std::string(static_cast<std::size_t>(number) * 700, 'x') + std::to_string(number);
}

void makeTree(LinuxFileWorld& world) {
  for (int number = 0; number < kFiles; ++number) {
    world.file("from/" + nameOfFile(number));
    std::ofstream(world.path("from/" + nameOfFile(number))) << contentsOfFile(number);
  }
}

void moveTree(LinuxFileWorld& world) {
  advancedMoveItemAtPath(LinuxFileWorld::files(), world.path("from/tree"), world.path("to/tree"));
}

// The process gets the signal by the clock, even while nobody else gets a processor.
void killThisProcessAfter(std::chrono::nanoseconds time) {
  sigevent event{};
  event.sigev_notify = SIGEV_SIGNAL;
  event.sigev_signo = SIGKILL;
  timer_t timer{};
  if (timer_create(CLOCK_MONOTONIC, &event, &timer) != 0) _exit(1);
  const itimerspec once{.it_interval = {}, .it_value = {.tv_sec = 0, .tv_nsec = time.count()}};
  if (timer_settime(timer, 0, &once, nullptr) != 0) _exit(1);
}

// Ends a process that moves the tree. Answers whether the move had not come to its end.
bool killMove(LinuxFileWorld& world, std::chrono::nanoseconds after) {
  ForkedProcess mover([&] {
    killThisProcessAfter(after);
    moveTree(world);
    _exit(0);
  });
  const int end = mover.awaitEnd();
  EXPECT_TRUE(end == 0 || end == -SIGKILL) << end;
  return end == -SIGKILL;
}

// Some time within which a move that is left alone would end. It follows what the machine has time
// for: longer after a kill that cut a move short, shorter after one that came too late.
class TimeToKill {
 public:
  [[nodiscard]] std::chrono::nanoseconds next() {
    return std::chrono::nanoseconds(std::uniform_int_distribution<long>(1, longest_)(random_));
  }

  void learn(bool cutShort) {
    longest_ = std::min(longest_ + (cutShort ? longest_ / 10 : -longest_ / 10), 900'000'000L);
  }

 private:
  long longest_ = 2'000'000;
  std::mt19937 random_{20'261'121};
};

void expectEachFileOnOneSide(LinuxFileWorld& world) {
  for (int number = 0; number < kFiles; ++number) {
    const std::string name = nameOfFile(number);
    const bool isWhole = contentsOf(world.path("from/" + name)) == contentsOfFile(number) ||
                         contentsOf(world.path("to/" + name)) == contentsOfFile(number);
    ASSERT_TRUE(isWhole) << name;
  }
}

void clearFolder(const std::string& path) {
  for (const auto& item : fs::directory_iterator(path)) fs::remove_all(item.path());
}

TEST_P(KilledMove, LosesNoFileWhateverTheInstant) {
  static constexpr int kKills = 250;
  play([](LinuxFileWorld& world) {
    TimeToKill time;
    int kills = 0;
    for (int tries = 0; kills < kKills && tries < 8 * kKills; ++tries) {
      makeTree(world);
      const bool isCutShort = killMove(world, time.next());
      time.learn(isCutShort);
      kills += isCutShort;
      expectEachFileOnOneSide(world);
      ASSERT_FALSE(testing::Test::HasFatalFailure());
      clearFolder(world.path("from"));
      clearFolder(world.path("to"));
    }
    EXPECT_EQ(kills, kKills);
  });
}

}  // namespace
}  // namespace vornix::contract
