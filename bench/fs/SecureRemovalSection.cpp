#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "bench/fs/Sections.h"
#include "bench/fs/SecureRemovals.h"
#include "bench/support/Comparison.h"

namespace vornix::bench {
namespace {

constexpr std::size_t kPairs = 31;
constexpr std::size_t kPairsWithPrograms = 5;
constexpr std::size_t kSmallFiles = 10'000;
constexpr std::size_t kSmallSize = std::size_t{16} << 10U;
constexpr std::size_t kLargeSize = std::size_t{1} << 30U;

// Only what is on a disk has to be waited for.
std::string placeOnDisk() {
  return benchFolders().front() + "/secure";
}

void writeFile(const std::string& path, std::size_t size) {
  static const std::vector<char> block(std::size_t{1} << 20U, 'x');
  const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
  bool holds = file >= 0;
  for (std::size_t at = 0; holds && at < size; at += std::min(size - at, block.size()))
    holds = write(file, block.data(), std::min(size - at, block.size())) > 0;
  if (!holds || (size > block.size() && fsync(file) != 0)) {
    std::perror(path.c_str());
    std::exit(2);
  }
  close(file);
}

std::string makeFolder(const std::string& name, std::size_t files, std::size_t size) {
  std::string folder = placeOnDisk() + "/" + name;
  std::filesystem::create_directories(folder);
  for (std::size_t number = 0; number < files; ++number)
    writeFile(folder + "/com.vendor.product-" + std::to_string(number), size);
  return folder;
}

// Folders to be used up one after the other.
class Folders {
 public:
  void make(std::string name, std::size_t count, std::size_t files, std::size_t size) {
    for (std::size_t number = 0; number < count; ++number)
      folders_.push_back(makeFolder(name + " " + std::to_string(number), files, size));
  }
  template <typename Removal>
  [[nodiscard]] std::function<void(std::size_t)> eachRemovedBy(Removal remove) {
    return [this, remove](std::size_t times) {
      for (std::size_t done = 0; done < times; ++done) {
        if (folders_.empty()) return;
        remove(folders_.back());
        folders_.pop_back();
      }
    };
  }

 private:
  std::vector<std::string> folders_;
};

struct SmallFiles {
  Folders ours;
  Folders raw;
  Folders oursForPrograms;
  Folders programs;
};

SmallFiles& smallFiles() {
  static auto& files = *new SmallFiles;
  return files;
}

void prepareSmallFiles() {
  // One more of each, since the first run tells how often to repeat.
  SmallFiles& all = smallFiles();
  for (const auto& [folders, name, count] :
       {std::tuple{&all.ours, "ours", kPairs + 1}, std::tuple{&all.raw, "raw", kPairs + 1},
        std::tuple{&all.oursForPrograms, "ours too", kPairsWithPrograms + 1},
        std::tuple{&all.programs, "programs", kPairsWithPrograms + 1}})
    folders->make(name, count, kSmallFiles, kSmallSize);
  sync();
}

bool compareSmall(const std::string& peer, double bar, std::size_t pairs,
                  std::function<void(std::size_t)> ours, std::function<void(std::size_t)> theirs) {
  return printRow(Comparison{.name = "secure removal, 10,000 of 16 KiB",
                             .peer = peer,
                             .bar = bar,
                             .ours = std::move(ours),
                             .theirs = std::move(theirs),
                             .clock = Clock::wall,
                             .pairs = pairs});
}

int measureSmallFiles() {
  SmallFiles& all = smallFiles();
  int missed = 0;
  missed += compareSmall("write, fdatasync, unlink", 0.65, kPairs,
                         all.ours.eachRemovedBy(removeSecurelyWithOurs),
                         all.raw.eachRemovedBy(removeSecurelyRaw))
                ? 0
                : 1;
  missed += compareSmall("shred -n1 -u", 1.00, kPairsWithPrograms,
                         all.oursForPrograms.eachRemovedBy(removeSecurelyWithOurs),
                         all.programs.eachRemovedBy(removeSecurelyWithShred))
                ? 0
                : 1;
  return missed;
}

// Each side's file is made right before its turn, outside of its time: together they would fill the
// disk.
bool compareLarge(const std::string& peer, double bar, std::size_t pairs,
                  const std::function<void(const std::string&)>& theirs) {
  std::string folder;
  return printRow(
      Comparison{.name = "secure removal, one of 1 GiB",
                 .peer = peer,
                 .bar = bar,
                 .ours = [&folder](std::size_t /*times*/) { removeSecurelyWithOurs(folder); },
                 .theirs = [&folder, &theirs](std::size_t /*times*/) { theirs(folder); },
                 .clock = Clock::wall,
                 .pairs = pairs,
                 .prepare = [&folder] { folder = makeFolder("large", 1, kLargeSize); }});
}

int measureLargeFiles() {
  int missed = 0;
  missed += compareLarge("write, fdatasync, unlink", 1.05, kPairs, removeSecurelyRaw) ? 0 : 1;
  missed += compareLarge("shred -n1 -u", 1.00, kPairsWithPrograms, removeSecurelyWithShred) ? 0 : 1;
  return missed;
}

}  // namespace

Section secureRemovalSection() {
  return {"secure", prepareSmallFiles, measureSmallFiles};
}

Section largeSecureRemovalSection() {
  return {"secure-large", [] {}, measureLargeFiles};
}

}  // namespace vornix::bench
