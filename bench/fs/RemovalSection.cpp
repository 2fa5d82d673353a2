#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <string_view>
#include <utility>

#include "bench/fs/Sections.h"
#include "bench/fs/WalkProgram.h"
#include "bench/support/Comparison.h"
#include "platform/files/NSFileManager.h"

namespace vornix::bench {
namespace {

constexpr int kFolders = 300;
constexpr int kFilesInAFolder = 10;
constexpr std::size_t kPairs = 31;
// One more pair shows how long a removal takes.
constexpr std::size_t kTrees = kPairs + 1;

using Removal = std::function<bool(const std::string&)>;

[[noreturn]] void giveUp(const std::string& what) {
  std::perror(what.c_str());
  std::exit(2);
}

// What nobody can do without: opens, reads and closes every folder, and removes by name.
// NOLINTNEXTLINE(misc-no-recursion): the tree is flat.
void removeRawBelow(int folder) {
  alignas(dirent64) std::array<char, 32768> batch;
  ssize_t length = 0;
  while ((length = getdents64(folder, batch.data(), batch.size())) > 0) {
    for (ssize_t at = 0; at < length;) {
      const auto* item = reinterpret_cast<const dirent64*>(batch.data() + at);
      at += item->d_reclen;
      const std::string_view name = item->d_name;
      if (name == "." || name == "..") continue;
      if (item->d_type == DT_DIR)
        removeRawBelow(openat(folder, item->d_name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW));
      if (unlinkat(folder, item->d_name, item->d_type == DT_DIR ? AT_REMOVEDIR : 0) != 0)
        giveUp(item->d_name);
    }
  }
  close(folder);
}

bool removeRaw(const std::string& tree) {
  removeRawBelow(open(tree.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  return rmdir(tree.c_str()) == 0;
}

bool removeWithOurs(const std::string& tree) {
  return NSFileManager::defaultManager().removeItemAtPath(tree);
}

void makeTree(const std::string& root) {
  for (int folder = 0; folder < kFolders; ++folder) {
    const std::string path =
        root + "/" + std::to_string(folder % 20) + "/folder-" + std::to_string(folder);
    std::filesystem::create_directories(path);
    for (int file = 0; file < kFilesInAFolder; ++file) {
      if (!std::ofstream(path + "/com.vendor.product-" + std::to_string(file)).good()) giveUp(path);
    }
  }
}

struct Peer {
  std::string name;
  double bar = 1;
  Removal ours;
  Removal theirs;
  Clock clock = Clock::processor;
};

std::vector<Peer> peers() {
  const Removal asProgram = [](const std::string& tree) {
    return runProgram({ownPath(), kRemoveCommand, tree});
  };
  return {{"openat, unlinkat, close", 1.05, removeWithOurs, removeRaw},
          {"std::filesystem", 1.00, removeWithOurs,
           [](const std::string& tree) { return std::filesystem::remove_all(tree) > 0; }},
          {"rm -rf", 1.00, asProgram,
           [](const std::string& tree) {
             return runProgram({"rm", "-rf", tree});
           },
           Clock::wall}};
}

std::string treeOf(const std::string& folder, const std::string& side, std::size_t number) {
  return folder + "/removal/" + side + "-" + std::to_string(number);
}

std::string sideOf(std::size_t peer, bool isOurs) {
  return std::to_string(peer) + (isOurs ? "-ours" : "-theirs");
}

void makeTrees(const std::string& folder) {
  for (std::size_t peer = 0; peer < peers().size(); ++peer) {
    for (std::size_t number = 0; number < kTrees; ++number) {
      for (const bool isOurs : {true, false})
        makeTree(treeOf(folder, sideOf(peer, isOurs), number));
    }
  }
}

// Removes another tree each time.
std::function<void(std::size_t)> removals(const std::string& folder, std::string side,
                                          Removal removal) {
  return [folder, side = std::move(side), removal = std::move(removal),
          number = std::size_t{0}](std::size_t times) mutable {
    for (std::size_t done = 0; done < times; ++done) {
      if (!removal(treeOf(folder, side, number++))) giveUp("cannot remove a tree of " + side);
    }
  };
}

int measureIn(const std::string& folder) {
  int missed = 0;
  const std::vector<Peer> all = peers();
  for (std::size_t peer = 0; peer < all.size(); ++peer) {
    const Comparison comparison{.name = "removal" + endingFor(folder),
                                .peer = all[peer].name,
                                .bar = all[peer].bar,
                                .ours = removals(folder, sideOf(peer, true), all[peer].ours),
                                .theirs = removals(folder, sideOf(peer, false), all[peer].theirs),
                                .clock = all[peer].clock,
                                .pairs = kPairs};
    missed += printRow(comparison) ? 0 : 1;
  }
  return missed;
}

}  // namespace

int removeAsProgram(const std::string& tree) {
  return removeWithOurs(tree) ? 0 : 1;
}

Section removalSection() {
  const auto prepare = [] {
    for (const std::string& folder : benchFolders()) makeTrees(folder);
  };
  const auto measure = [] {
    int missed = 0;
    for (const std::string& folder : benchFolders()) missed += measureIn(folder);
    return missed;
  };
  return {"removal", prepare, measure};
}

}  // namespace vornix::bench
