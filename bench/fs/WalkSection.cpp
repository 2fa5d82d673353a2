#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <utility>

#include "bench/fs/Sections.h"
#include "bench/fs/WalkProgram.h"
#include "bench/fs/Walkers.h"
#include "bench/support/Comparison.h"
#include "fs/NSFileManager+FileModificationsAdditions.h"

namespace vornix::bench {
namespace {

constexpr int kTopFolders = 20;
constexpr int kMiddleFolders = 30;
constexpr int kInnerFolders = 31;
constexpr std::size_t kPairs = 31;

std::string treeIn(const std::string& folder) {
  return folder + "/walk";
}

void makeFiles(const std::string& folder, int count) {
  for (int file = 0; file < count; ++file) {
    const std::string name = "com.vendor.product-" + std::to_string(file * 7919 % 1000) + ".plist";
    if (!std::ofstream(folder + "/" + name).good()) std::abort();
  }
}

// About ten items in a folder, as in a home folder.
void makeTree(const std::string& root) {
  int number = 0;
  for (int top = 0; top < kTopFolders; ++top) {
    for (int middle = 0; middle < kMiddleFolders; ++middle) {
      const std::string parent =
          root + "/Library " + std::to_string(top) + "/Application " + std::to_string(middle);
      for (int inner = 0; inner < kInnerFolders; ++inner, ++number) {
        const std::string folder = parent + "/folder-" + std::to_string(inner);
        std::filesystem::create_directories(folder);
        makeFiles(folder, number * 7 % 20);
        if (number % 100 == 0) std::ofstream(folder + "/Disk Utility.dat");
      }
    }
  }
}

std::size_t findIn(const std::string& folder, bool byWords) {
  return findFile(NSFileManager::defaultManager(), "Disk Utility", folder, byWords, true).size();
}

class WalkMeasure {
 public:
  explicit WalkMeasure(const std::string& folder)
      : tree_(treeIn(folder)), ending_(endingFor(folder)) {}

  int run() {
    const std::size_t items = walkRaw(tree_);
    if (walkWithOurs(tree_) != items || walkWithFts(tree_) != items) {
      std::fprintf(stderr, "error: the walks of %s differ\n", tree_.c_str());
      ++missed_;
    }
    const auto ours = [this] { return walkWithOurs(tree_); };
    compare("walk", "openat, getdents64, close", 1.10, ours, [this] { return walkRaw(tree_); });
    compare("walk", "fts of the C library", 1.00, ours, [this] { return walkWithFts(tree_); });
    compare("walk", "std::filesystem", 1.00, ours,
            [this] { return walkWithStandardLibrary(tree_); });
    compare(
        "findFile by part", "openat, getdents64, close", 1.30,
        [this] { return findIn(tree_, false); }, [this] { return walkRaw(tree_); });
    compare(
        "findFile by words", "openat, getdents64, close", 1.30,
        [this] { return findIn(tree_, true); }, [this] { return walkRaw(tree_); });
    comparePrograms();
    countSystemCalls(items);
    return missed_;
  }

 private:
  template <typename Ours, typename Theirs>
  void compare(const std::string& name, const std::string& peer, double bar, Ours ours,
               Theirs theirs, Clock clock = Clock::processor) {
    const Comparison comparison{.name = name + ending_,
                                .peer = peer,
                                .bar = bar,
                                .ours = repeated(ours),
                                .theirs = repeated(theirs),
                                .clock = clock,
                                .pairs = kPairs};
    if (!printRow(comparison)) ++missed_;
  }

  // Each with its start and end, and with all its threads.
  void comparePrograms() {
    const std::vector<std::vector<std::string>> programs{
        {"find", tree_, "-false"}, {"bfs", tree_, "-false"}, {"fdfind", "-u", "^$", tree_}};
    for (const auto& program : programs) {
      // Whoever finds nothing may say so with its status.
      const std::string path = pathOf(program.front());
      if (path.empty()) {
        std::printf("%-34s %-26s NOT MEASURED: not installed\n", ("walk" + ending_).c_str(),
                    program.front().c_str());
        continue;
      }
      compare(
          "walk as a program", program.front(), 1.00,
          [this] {
            return runProgram({ownPath(), kWalkCommand, tree_});
          },
          [&program] { return runProgram(program); }, Clock::wall);
    }
  }

  static std::string pathOf(const std::string& program) {
    std::string path = "/usr/bin/" + program;
    return std::filesystem::exists(path) ? path : std::string();
  }

  void countSystemCalls(std::size_t items) {
    const std::size_t calls = systemCallsOfWalk(tree_);
    if (calls == 0) {
      std::printf("%-61s NOT MEASURED: no strace\n", ("system calls an item" + ending_).c_str());
      return;
    }
    const double rate = static_cast<double>(calls) / static_cast<double>(items);
    const Rate row{"system calls an item" + ending_, 0.38, [rate] { return rate; }};
    if (!printRow(row)) ++missed_;
  }

  std::string tree_;
  std::string ending_;
  int missed_ = 0;
};

}  // namespace

Section walkSection() {
  const auto prepare = [] {
    for (const std::string& folder : benchFolders()) makeTree(treeIn(folder));
  };
  const auto measure = [] {
    int missed = 0;
    for (const std::string& folder : benchFolders()) missed += WalkMeasure(folder).run();
    return missed;
  };
  return {"walk", prepare, measure};
}

}  // namespace vornix::bench
