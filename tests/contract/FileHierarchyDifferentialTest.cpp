#include <fcntl.h>
#include <fts.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/linux/system/FileDescriptor.h"
#include "tests/contract/support/FileWorld.h"
#include "tests/contract/support/Walks.h"
#include "tests/support/RandomInput.h"

namespace vornix::contract {
namespace {

constexpr int kTrees = 12;
constexpr int kItems = 150;
constexpr mode_t kModes[] = {0755, 0755, 0, 0111, 0444, 0555};

struct FtsCloser {
  void operator()(FTS* walk) const { fts_close(walk); }
};

struct SeenStep {
  Step step;
  int error = 0;
  std::string name{};

  friend bool operator==(const SeenStep&, const SeenStep&) = default;
  friend void PrintTo(const SeenStep& seen, std::ostream* stream) {
    PrintTo(seen.step, stream);
    *stream << " error " << seen.error << " name " << seen.name;
  }
};
using Seen = std::vector<SeenStep>;
using Chooser = std::function<bool(std::string_view path)>;

bool hasError(HierarchyKind kind) {
  return kind == HierarchyKind::unreadableFolder || kind == HierarchyKind::noStatus;
}

Seen seenByFts(std::string path, HierarchyOptions options, const Chooser& skips) {
  const int flags = FTS_NOCHDIR | FTS_PHYSICAL | (options.noStatus ? FTS_NOSTAT : 0) |
                    (options.noCrossing ? FTS_XDEV : 0);
  char* paths[] = {path.data(), nullptr};
  const std::unique_ptr<FTS, FtsCloser> walk(fts_open(paths, flags, nullptr));
  Seen seen;
  while (FTSENT* entry = fts_read(walk.get())) {
    const auto kind = static_cast<HierarchyKind>(entry->fts_info);
    seen.push_back({{kind, entry->fts_path, static_cast<std::size_t>(entry->fts_level)},
                    hasError(kind) ? entry->fts_errno : 0,
                    entry->fts_name});
    if (skips(entry->fts_path)) fts_set(walk.get(), entry, FTS_SKIP);
  }
  return seen;
}

Seen seenByOurs(const std::string& path, HierarchyOptions options, const Chooser& skips) {
  const auto walk = NSFileManager::defaultManager().hierarchyAtPath(path, options);
  Seen seen;
  while (const HierarchyEntry* entry = walk->read()) {
    seen.push_back({{entry->kind, std::string(entry->path), entry->level},
                    entry->error,
                    std::string(entry->name)});
    if (skips(entry->path)) walk->skip();
  }
  return seen;
}

bool skipsNothing(std::string_view /*path*/) {
  return false;
}

bool skipsSome(std::string_view path) {
  return std::hash<std::string_view>()(path) % 4 == 0;
}

// The same entries in the same order.
void expectSameWalk(const std::string& path, HierarchyOptions options) {
  EXPECT_EQ(seenByOurs(path, options, skipsNothing), seenByFts(path, options, skipsNothing));
  EXPECT_EQ(seenByOurs(path, options, skipsSome), seenByFts(path, options, skipsSome));
}

// Folders, files, links and what else there is, of names of whatever bytes.
class RandomTree {
 public:
  explicit RandomTree(std::uint32_t seed) : random_(seed) {}

  // Answers the folders made, the first one last.
  std::vector<std::string> grow(const std::string& root) {
    std::vector<std::string> folders{root};
    for (int item = 0; item < kItems; ++item) {
      const std::string& parent = folders[random_.upTo(folders.size() - 1)];
      const std::string path = parent + "/" + name(item);
      if (path.size() > 3500) continue;
      if (make(path)) folders.push_back(path);
    }
    return {folders.rbegin(), folders.rend()};
  }

  std::size_t upTo(std::size_t last) { return random_.upTo(last); }

 private:
  std::string name(int number) {
    const std::string end = std::to_string(number);
    switch (random_.upTo(7)) {
      case 0:
        return std::string(255 - end.size(), 'x') + end;
      case 1:
        return "\xFF\xC0" + end;
      case 2:
        return "." + end;
      case 3:
        return "a\nb " + end;
      default:
        return end;
    }
  }

  // Whether that is a folder.
  bool make(const std::string& path) {
    switch (random_.upTo(9)) {
      case 0:
        EXPECT_EQ(symlink("..", path.c_str()), 0);
        return false;
      case 1:
        EXPECT_EQ(symlink(path.c_str(), path.c_str()), 0);
        return false;
      case 2:
        EXPECT_EQ(mkfifo(path.c_str(), 0600), 0);
        return false;
      case 3:
      case 4:
      case 5:
        EXPECT_EQ(mkdir(path.c_str(), 0755), 0);
        return true;
      default:
        EXPECT_GE(FileDescriptor(open(path.c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0600)).get(),
                  0);
        return false;
    }
  }

  tests::RandomInput random_;
};

template <typename World>
class FileHierarchyDifferential : public testing::Test {};

using Worlds = testing::Types<LinuxFileWorld, TmpfsFileWorld>;
TYPED_TEST_SUITE(FileHierarchyDifferential, Worlds);

TYPED_TEST(FileHierarchyDifferential, WalksRandomTreesAsFtsDoes) {
  TypeParam::play([](TypeParam& world) {
    for (std::uint32_t seed = 0; seed < kTrees; ++seed) {
      const std::string name = "tree" + std::to_string(seed);
      world.folder(name);
      RandomTree(seed).grow(world.path(name));
      world.enter("");
      for (const bool noStatus : {false, true}) {
        for (const bool noCrossing : {false, true})
          expectSameWalk(name, {.noStatus = noStatus, .noCrossing = noCrossing});
      }
      for (const std::string& start : {name + "/", name + "//", "./" + name, world.path(name)})
        expectSameWalk(start, {.noStatus = true});
    }
  });
}

TYPED_TEST(FileHierarchyDifferential, BeginsWithWhateverItemAsFtsDoes) {
  TypeParam::play([](TypeParam& world) {
    world.file("file");
    world.file("folder/inner");
    world.link("link", "folder");
    world.link("nowhere", "missing");
    world.enter("folder");
    for (const char* start : {"../file", "../file/", "../link", "../link/", "../nowhere",
                              "../nowhere/", "../missing", "../file/x", ".", "./", "..",
                              "../folder/.", "../folder/..", "../link//", "inner", "/dev/null"}) {
      for (const bool noStatus : {false, true}) expectSameWalk(start, {.noStatus = noStatus});
    }
    const std::string tooLong(5000, 'x');
    expectSameWalk(tooLong, {});
    expectSameWalk(tooLong.substr(0, 256), {});
  });
}

TYPED_TEST(FileHierarchyDifferential, WalksTreesThatMayNotBeReadEverywhereAsFtsDoes) {
  TypeParam::play([](TypeParam& world) {
    constexpr HierarchyOptions options{.noStatus = true};
    world.folder("closed");
    for (std::uint32_t seed = 0; seed < kTrees; ++seed) {
      const std::string name = "tree" + std::to_string(seed);
      world.folder(name);
      RandomTree(100 + seed).grow(world.path(name));
    }
    world.enter("");
    world.forbidReading("closed");
    for (std::uint32_t seed = 0; seed < kTrees; ++seed) {
      const std::string name = "tree" + std::to_string(seed);
      tests::RandomInput random(seed);
      // Inner folders first, since outer ones may get closed.
      const Seen all = seenByOurs(name, options, skipsNothing);
      for (const SeenStep& each : all) {
        if (each.step.kind == HierarchyKind::folderEnd)
          chmod(each.step.path.c_str(), kModes[random.upTo(std::size(kModes) - 1)]);
      }
      expectSameWalk(name, options);
      expectSameWalk(name, {.noStatus = true, .noCrossing = true});
      for (const SeenStep& each : all) {
        if (each.step.kind == HierarchyKind::folder) chmod(each.step.path.c_str(), 0755);
      }
    }
  });
}

TYPED_TEST(FileHierarchyDifferential, WalksTreesWithMountsAsFtsDoes) {
  const auto outcome = TypeParam::play([](TypeParam& world) {
    for (std::uint32_t seed = 0; seed < kTrees; ++seed) {
      const std::string name = "tree" + std::to_string(seed);
      world.folder(name);
      RandomTree tree(200 + seed);
      const auto relative = [&](const std::string& path) {
        return path.substr(world.path("").size() + 1);
      };
      const std::vector<std::string> folders = tree.grow(world.path(name));
      // What is bound inside itself leads to itself; later mounts cover earlier ones.
      for (int mount = 0; mount < 6; ++mount) {
        const std::string& point = folders[tree.upTo(folders.size() - 2)];
        const std::string& source = folders[tree.upTo(folders.size() - 1)];
        if (access(point.c_str(), F_OK) != 0 || access(source.c_str(), F_OK) != 0) continue;
        if (mount % 3 == 0) {
          world.mount(relative(point));
          world.file(relative(point) + "/inner/file");
        } else {
          world.bind(relative(source), relative(point));
        }
      }
      expectSameWalk(world.path(name), {.noStatus = true});
      expectSameWalk(world.path(name), {});
      expectSameWalk(world.path(name), {.noStatus = true, .noCrossing = true});
    }
  });
  if (outcome == FakeFileWorld::Outcome::mayNotMount) GTEST_SKIP() << kMayNotMount;
}

// Of a tree that others may change meanwhile: between two walks that see the same.
void expectSameWalkOnceStill(const std::string& path, HierarchyOptions options) {
  constexpr int mostAttempts = 50;
  for (int attempt = 0; attempt < mostAttempts; ++attempt) {
    const Seen before = seenByFts(path, options, skipsNothing);
    const Seen ours = seenByOurs(path, options, skipsNothing);
    if (seenByFts(path, options, skipsNothing) != before) continue;
    EXPECT_EQ(ours, before);
    return;
  }
  ADD_FAILURE() << path << " changes all the time";
}

TEST(FileHierarchyDifferential, WalksTheKernelsOwnFoldersAsFtsDoes) {
  // Here and there the items have no types, or folders count no links.
  for (const char* path : {"/sys/class", "/sys/kernel/mm", "/proc/sys", "/usr/share/doc"}) {
    expectSameWalkOnceStill(path, {.noStatus = true});
    expectSameWalkOnceStill(path, {.noStatus = true, .noCrossing = true});
  }
}

}  // namespace
}  // namespace vornix::contract
