#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <set>
#include <string>
#include <utility>

#include "tests/contract/support/CrossingVolumes.h"
#include "tests/contract/support/FileWorld.h"
#include "tests/contract/support/InterceptedCalls.h"

// Moving across volumes while somebody else changes what is moved.
namespace vornix::contract {
namespace {

namespace fs = std::filesystem;

class ChangingSource : public CrossingVolumes {};

INSTANTIATE_TEST_SUITE_P(, ChangingSource,
                         testing::Values(Crossing{"FromDiskToMemory", "here", "memory"},
                                         Crossing{"FromMemoryToDisk", "memory", "here"},
                                         Crossing{"FromDiskToDisk", "here", "disk"}),
                         [](const auto& each) { return std::string(each.param.name); });

// Once all is copied, before the source is removed.
void changeAfterCopying(const std::function<void()>& change) {
  interceptCalls({SYS_syncfs}, [change, isDone = false](const seccomp_data&) mutable {
    if (!std::exchange(isDone, true)) change();
  });
}

void append(const std::string& path, const std::string& text) {
  std::ofstream(path, std::ios::app) << text;
}

std::string contentsOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

void replace(const std::string& path, const std::string& contents) {
  write(path + ".new", contents);
  fs::rename(path + ".new", path);
}

TEST_P(ChangingSource, LeavesInTheSourceWhatWasChangedOrAddedAfterItWasCopied) {
  play([](LinuxFileWorld& world) {
    const auto at = [&world](const std::string& name) { return world.path("from/tree/" + name); };
    for (const char* name : {"same", "longer", "replaced", "rewritten", "a/same", "a/b/longer",
                             "only-same/a/same", "becomes-folder", "becomes-link"}) {
      world.file("from/tree/" + std::string(name));
      write(at(name), "old");
      setTimes(at(name), 1'000'000'000, 1'100'000'000);
    }
    world.link("from/tree/link", "old");
    world.link("from/tree/same-link", "old");
    fs::create_hard_link(at("same"), at("other name"));
    EXPECT_EQ(mkfifo(at("pipe").c_str(), 0600), 0);
    changeAfterCopying([&] {
      append(at("longer"), " and new");
      append(at("a/b/longer"), " and new");
      replace(at("replaced"), "new");
      write(at("rewritten"), "new");
      write(at("added"), "new");
      write(at("a/added"), "new");
      fs::create_directories(at("added-folder/empty"));
      fs::remove(at("link"));
      fs::create_symlink("new", at("link"));
      fs::remove(at("becomes-folder"));
      fs::create_directory(at("becomes-folder"));
      fs::remove(at("becomes-link"));
      fs::create_symlink("old", at("becomes-link"));
    });
    EXPECT_EQ(moveCode(world, "from/tree", "to/tree"), 512);
    EXPECT_EQ(namesIn(world.path("from/tree")),
              (std::set<std::string>{"longer", "replaced", "rewritten", "a", "added",
                                     "added-folder", "link", "becomes-folder", "becomes-link"}));
    EXPECT_EQ(namesIn(at("a")), (std::set<std::string>{"added", "b"}));
    for (const char* name : {"longer", "a/b/longer"})
      EXPECT_EQ(contentsOf(at(name)), "old and new");
    for (const char* name : {"replaced", "rewritten", "added", "a/added"})
      EXPECT_EQ(contentsOf(at(name)), "new") << name;
    EXPECT_EQ(fs::read_symlink(at("link")), "new");
    for (const char* name : {"same", "longer", "replaced", "rewritten", "a/same", "a/b/longer",
                             "only-same/a/same", "other name", "becomes-folder", "becomes-link"})
      EXPECT_EQ(contentsOf(world.path("to/tree/" + std::string(name))), "old") << name;
  });
}

TEST_P(ChangingSource, LeavesAFileThatWasChangedAfterItWasCopiedOnBothSides) {
  play([](LinuxFileWorld& world) {
    write(world.path("from/file"), "old");
    changeAfterCopying([&] { append(world.path("from/file"), " and new"); });
    EXPECT_EQ(moveCode(world, "from/file", "to/file"), 512);
    EXPECT_EQ(contentsOf(world.path("from/file")), "old and new");
    EXPECT_EQ(contentsOf(world.path("to/file")), "old");
  });
}

TEST_P(ChangingSource, TakesWhatWasRemovedAfterItWasCopiedForRemoved) {
  play([](LinuxFileWorld& world) {
    for (const char* name : {"from/tree/a/file", "from/tree/b/file", "from/tree/file"})
      world.file(name);
    changeAfterCopying([&] {
      fs::remove_all(world.path("from/tree/a"));
      fs::remove(world.path("from/tree/file"));
    });
    EXPECT_EQ(moveCode(world, "from/tree", "to/tree"), 0);
    EXPECT_TRUE(fs::exists(world.path("to/tree/a/file")));
    EXPECT_TRUE(fs::is_empty(world.path("from")));
  });
}

TEST_P(ChangingSource, TakesAFolderThatIsRemovedBeforeItIsReadForEmpty) {
  play([](LinuxFileWorld& world) {
    for (const char* name : {"from/tree/a/file", "from/tree/b/file", "from/tree/c/file"})
      world.file(name);
    interceptCalls({SYS_getdents64}, [](const seccomp_data& call) {
      const fs::path folder = fs::read_symlink("/proc/self/fd/" + std::to_string(call.args[0]));
      if (folder.filename() == "b" && folder.native().find("/from/") != std::string::npos)
        fs::remove_all(folder);
    });
    EXPECT_EQ(moveCode(world, "from/tree", "to/tree"), 0);
    EXPECT_TRUE(fs::exists(world.path("to/tree/a/file")));
    EXPECT_TRUE(fs::exists(world.path("to/tree/c/file")));
    EXPECT_TRUE(fs::is_empty(world.path("from")));
  });
}

TEST(LinuxVolumeCrossing, RemovesWhatACoarserVolumeHasCopiedButNotWhatWasChanged) {
  const auto outcome = LinuxFileWorld::play([](LinuxFileWorld& world) {
    world.folder("to");
    // Whole seconds, and none far in the future.
    world.mountImage("to", "-I 128");
    const auto makeTree = [&world](time_t modified) {
      for (const char* name : {"from/tree/file", "from/tree/folder/file"}) {
        world.file(name);
        setTimes(world.path(name), 1'000'000'000, modified);
      }
    };
    makeTree(1'100'000'000);
    EXPECT_EQ(moveCode(world, "from/tree", "to/near"), 0);
    makeTree(4'100'000'000);
    EXPECT_EQ(moveCode(world, "from/tree", "to/far"), 0);
    EXPECT_TRUE(fs::is_empty(world.path("from")));
    makeTree(1'100'000'000);
    changeAfterCopying([&] { setTimes(world.path("from/tree/file"), 5, 1'100'000'001); });
    EXPECT_EQ(moveCode(world, "from/tree", "to/changed"), 512);
    EXPECT_EQ(namesIn(world.path("from/tree")), std::set<std::string>{"file"});
  });
  if (outcome == FakeFileWorld::Outcome::mayNotMount) GTEST_SKIP() << kMayNotMountDisks;
}

}  // namespace
}  // namespace vornix::contract
