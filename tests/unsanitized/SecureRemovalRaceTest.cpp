#include <gtest/gtest.h>
#include <sys/syscall.h>

#include <cerrno>
#include <string>

#include "platform/files/FileRemover.h"
#include "tests/contract/support/FailingCall.h"
#include "tests/contract/support/OnVolume.h"
#include "tests/contract/support/SwappedItems.h"

// Secure removal while another process exchanges what is removed for links.
namespace vornix::contract {
namespace {

class SecureRemovalRace : public OnVolume {};
VORNIX_ON_EVERY_VOLUME(SecureRemovalRace);

void race(const SwappedItems& items, const std::string& path, int swaps) {
  items.race(swaps, [&path] { (void)sharedFileRemover().removefile(path, 0x11); });
}

TEST_P(SecureRemovalRace, NeverTouchesWhatItemsAreSwappedForAgainAndAgain) {
  play([](LinuxFileWorld& world) {
    const SwappedItems items(world, "here", {.plantsNames = true});
    race(items, items.doomed(), kManySwaps);
  });
}

TEST_P(SecureRemovalRace, NeverTouchesWhatItemsAreSwappedForWhereTheKernelKeepsNobodyWithin) {
  play([](LinuxFileWorld& world) {
    const SwappedItems items(world, "here", {.plantsNames = true});
    failSystemCall(SYS_openat2, ENOSYS);
    race(items, items.doomed(), kSomeSwaps);
  });
}

TEST_P(SecureRemovalRace, NeverTouchesWhatTheItemItselfIsSwappedForAgainAndAgain) {
  for (const char* name : {"folder", "file"}) {
    play([name](LinuxFileWorld& world) {
      const SwappedItems items(world, "here", {.folder = "", .names = {name}});
      race(items, world.path("here") + "/" + name, kSomeSwaps);
    });
  }
}

}  // namespace
}  // namespace vornix::contract
