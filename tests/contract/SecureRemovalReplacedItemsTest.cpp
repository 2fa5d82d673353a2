#include <gtest/gtest.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

#include "platform/files/FileRemover.h"
#include "tests/contract/support/InterceptedCalls.h"
#include "tests/contract/support/OnVolume.h"

// Secure removal of items whose names get others at the last instant, as programs do that write a
// new file and move it to where the old one was.
namespace vornix::contract {
namespace {

namespace fs = std::filesystem;

// Runs the part on a thread of its own. Before each renaming there, it waits for `meanwhile`, which
// gets the number of times before.
void playWithPauses(const std::function<void(int)>& meanwhile, const std::function<void()>& part) {
  std::atomic<int> number = 0;
  std::thread([&] {
    interceptCalls({SYS_renameat2}, [&](const seccomp_data&) {
      meanwhile(number);
      ++number;
    });
    part();
  }).join();
  // What was done meanwhile comes before what follows, for a thread sanitizer, too.
  EXPECT_GT(number, 0);
}

void writeTo(const fs::path& path, const std::string& contents) {
  EXPECT_TRUE((std::ofstream(path, std::ios::binary) << contents).good()) << path;
}

std::string readFrom(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

// Something called "item" that is about to go.
struct Doomed {
  const char* name;
  std::function<void(const fs::path& item)> make;
};

const std::vector<Doomed> kDoomed{
    {"file", [](const fs::path& item) { writeTo(item, "contents"); }},
    {"empty file", [](const fs::path& item) { writeTo(item, ""); }},
    {"link", [](const fs::path& item) { fs::create_symlink("nowhere", item); }},
    {"one of two names",
     [](const fs::path& item) {
       writeTo(item.parent_path().parent_path() / "other name", "contents");
       fs::create_hard_link(item.parent_path().parent_path() / "other name", item);
     }},
};

class SecureRemovalOfReplacedItems : public OnVolume {
 protected:
  // Removes each sort of item, and has something happen whenever it, or what it is by then, is
  // about to get another name; `story` looks at what is left.
  static void playEach(const std::function<void(const fs::path& item, int number)>& meanwhile,
                       const std::function<void(const fs::path& item)>& story) {
    play([&](LinuxFileWorld& world) {
      for (const Doomed& doomed : kDoomed) {
        SCOPED_TRACE(doomed.name);
        const fs::path folder = world.path("here/" + std::string(doomed.name));
        fs::create_directories(folder / "doomed");
        const fs::path item = folder / "doomed/item";
        doomed.make(item);
        RemovefileResult result;
        const auto removal = [&] { result = sharedFileRemover().removefile(item.native(), 0x11); };
        playWithPauses([&](int number) { meanwhile(item, number); }, removal);
        EXPECT_EQ(result, (RemovefileResult{.value = -1, .errorNumber = EBUSY}));
        story(item);
      }
    });
  }
};
VORNIX_ON_EVERY_VOLUME(SecureRemovalOfReplacedItems);

void replace(const fs::path& item, const std::string& contents) {
  const fs::path fresh = item.parent_path().parent_path() / "fresh";
  writeTo(fresh, contents);
  fs::rename(fresh, item);
}

TEST_P(SecureRemovalOfReplacedItems, KeepsAFileThatItDidNotOverwrite) {
  const auto replaceOnce = [](const fs::path& item, int number) {
    if (number == 0) replace(item, "fresh");
  };
  playEach(replaceOnce, [](const fs::path& item) {
    EXPECT_EQ(readFrom(item), "fresh");
    EXPECT_EQ(std::distance(fs::directory_iterator(item.parent_path()), {}), 1);
  });
}

TEST_P(SecureRemovalOfReplacedItems, KeepsTheFileByAnotherNameWhenItsOwnIsTakenAgain) {
  const auto replaceTwice = [](const fs::path& item, int number) {
    replace(item, number == 0 ? "first" : "second");
  };
  playEach(replaceTwice, [](const fs::path& item) {
    EXPECT_EQ(readFrom(item), "second");
    std::vector<std::string> others;
    for (const auto& other : fs::directory_iterator(item.parent_path()))
      if (other.path() != item) others.push_back(readFrom(other.path()));
    EXPECT_EQ(others, std::vector<std::string>{"first"});
  });
}

TEST_P(SecureRemovalOfReplacedItems, KeepsAFileWhoseOtherNamesGoMeanwhile) {
  play([](LinuxFileWorld& world) {
    world.folder("here/doomed");
    writeTo(world.path("here/doomed/item"), "contents");
    fs::create_hard_link(world.path("here/doomed/item"), world.path("here/other"));
    RemovefileResult result;
    playWithPauses(
        [&](int) { fs::remove(world.path("here/other")); },
        [&] { result = sharedFileRemover().removefile(world.path("here/doomed"), 0x11); });
    EXPECT_EQ(result, (RemovefileResult{.value = -1, .errorNumber = EBUSY}));
    EXPECT_EQ(readFrom(world.path("here/doomed/item")), "contents");
  });
}

}  // namespace
}  // namespace vornix::contract
