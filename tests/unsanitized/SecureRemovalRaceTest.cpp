#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

#include "platform/files/FileRemover.h"
#include "tests/contract/ForkedProcess.h"
#include "tests/contract/support/FailingCall.h"
#include "tests/contract/support/OnVolume.h"
#include "tests/contract/support/SwappedItems.h"
#include "tests/contract/support/TreeText.h"

// Secure removal while another process exchanges what is removed for links.
namespace vornix::contract {
namespace {

namespace fs = std::filesystem;

void writeBytes(const std::string& path, const std::string& bytes) {
  EXPECT_TRUE((std::ofstream(path, std::ios::binary) << bytes).good()) << path;
}

// Folders and files to be removed, links to what must stay, and a process that exchanges them.
class ExchangedItems {
 public:
  // Those of these names in a folder; of "file" and more, a name is a file's.
  ExchangedItems(LinuxFileWorld& world, const std::string& folder, std::vector<std::string> names)
      : world_(world), folder_(world.path(folder)), names_(std::move(names)) {
    for (const char* name : {"here/canary/alone", "here/canary/sub/file", "here/canary/shared"}) {
      world.file(name);
      writeBytes(world.path(name), "what must stay as it is");
    }
    fs::create_hard_link(shared_, world.path("here/canary/other-name"));
    world.folder("here/links");
    renew();
  }

  // As a process's whole life, which is over when so many exchanges were made.
  [[noreturn]] void swap(int times) const {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    int swaps = 0;
    for (std::size_t number = 0; swaps < times; ++number) {
      const std::string& name = names_[number % names_.size()];
      swaps += renameat2(AT_FDCWD, (folder_ / name).c_str(), AT_FDCWD, (links_ / name).c_str(),
                         RENAME_EXCHANGE) == 0;
      if (number % 16 == 0) (void)link(shared_.c_str(), (folder_ / "planted").c_str());
    }
    _exit(0);
  }

  // Makes what is missing, where nothing is swapped, and moves it to its place.
  void renew() const {
    fs::create_directories(folder_);
    for (const std::string& name : names_) {
      std::error_code taken;
      const fs::path fresh = world_.path("here/fresh/" + name);
      const bool isFile = name.starts_with("file");
      if (!isFile) world_.file("here/fresh/" + name + "/sub/deeper/file");
      world_.folder("here/fresh");
      writeBytes(isFile ? fresh : fresh / "sub/file", "doomed");
      fs::rename(fresh, folder_ / name, taken);
      // What was exchanged for a link that is gone now.
      if (!fs::is_symlink(links_ / name)) fs::remove_all(links_ / name, taken);
      // From where the kernel would not say that they lead to another volume.
      const fs::path target = canary_.lexically_relative(folder_);
      fs::create_symlink(isFile ? target / "alone" : target, links_ / name, taken);
    }
  }

  // Removes the path again and again, while another process swaps.
  void race(const std::string& path, int swaps) const {
    const std::string canary = textOfTree(canary_);
    const ForkedProcess swapper([this, swaps] { swap(swaps); });
    int status = 0;
    while (waitpid(-1, &status, WNOHANG) == 0) {
      (void)sharedFileRemover().removefile(path, 0x11);
      ASSERT_EQ(textOfTree(canary_), canary);
      renew();
    }
    EXPECT_EQ(status, 0);
  }

 private:
  LinuxFileWorld& world_;
  const fs::path folder_;
  const std::vector<std::string> names_;
  const fs::path links_ = world_.path("here/links");
  const fs::path canary_ = world_.path("here/canary");
  const fs::path shared_ = canary_ / "shared";
};

class SecureRemovalRace : public OnVolume {};
VORNIX_ON_EVERY_VOLUME(SecureRemovalRace);

const std::vector<std::string> kSwappedNames{"0", "1", "2", "file 0", "file 1"};

TEST_P(SecureRemovalRace, NeverTouchesWhatItemsAreSwappedForAgainAndAgain) {
  play([](LinuxFileWorld& world) {
    ExchangedItems(world, "here/doomed", kSwappedNames).race(world.path("here/doomed"), kManySwaps);
  });
}

TEST_P(SecureRemovalRace, NeverTouchesWhatItemsAreSwappedForWhereTheKernelKeepsNobodyWithin) {
  play([](LinuxFileWorld& world) {
    const ExchangedItems items(world, "here/doomed", kSwappedNames);
    failSystemCall(SYS_openat2, ENOSYS);
    items.race(world.path("here/doomed"), kSomeSwaps);
  });
}

TEST_P(SecureRemovalRace, NeverTouchesWhatTheItemItselfIsSwappedForAgainAndAgain) {
  for (const char* name : {"folder", "file"}) {
    play([name](LinuxFileWorld& world) {
      ExchangedItems(world, "here", {name}).race(world.path("here") + "/" + name, kSomeSwaps);
    });
  }
}

}  // namespace
}  // namespace vornix::contract
