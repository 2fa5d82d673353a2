// Measures walks and searches through one tree of about 200,000 items, removals of hundreds of
// small ones, and secure removals, on the disk and in memory, against what else does the same, and
// says for each whether it is as fast as it has to be. An argument limits it to the section of that
// name. Ends with status 1 where a bar is missed.
#include <linux/magic.h>
#include <sys/stat.h>
#include <sys/vfs.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "bench/fs/Sections.h"
#include "bench/fs/WalkProgram.h"
#include "bench/support/Comparison.h"

namespace vornix::bench {

std::vector<std::string> benchFolders() {
  static const std::vector<std::string> folders = [] {
    const char* chosen = std::getenv("TMPDIR");
    std::vector<std::string> made;
    for (const std::string parent : {chosen != nullptr ? chosen : "/tmp", "/dev/shm"}) {
      std::string folder = parent + "/vornix-bench-XXXXXX";
      if (mkdtemp(folder.data()) != nullptr) made.push_back(folder);
    }
    return made;
  }();
  return folders;
}

std::string endingFor(const std::string& folder) {
  struct statfs status {};
  if (statfs(folder.c_str(), &status) != 0) return ", ?";
  if (status.f_type == EXT4_SUPER_MAGIC) return ", ext4";
  return status.f_type == TMPFS_MAGIC ? ", tmpfs" : ", other";
}

}  // namespace vornix::bench

int main(int argc, char** argv) {
  using namespace vornix::bench;
  if (argc == 3 && std::string_view(argv[1]) == kWalkCommand) return walkAsProgram(argv[2]);
  if (argc == 3 && std::string_view(argv[1]) == kRemoveCommand) return removeAsProgram(argv[2]);
  std::vector<Section> sections{walkSection(), removalSection(), secureRemovalSection(),
                                largeSecureRemovalSection()};
  const std::string_view wanted = argc > 1 ? argv[1] : "";
  std::erase_if(sections,
                [&](const Section& each) { return !wanted.empty() && each.name != wanted; });
  if (sections.empty()) return std::fprintf(stderr, "error: no section of that name\n"), 2;
  for (const Section& section : sections) section.prepare();
  printHead();
  int missed = 0;
  for (const Section& section : sections) missed += section.measure();
  for (const std::string& folder : benchFolders()) std::filesystem::remove_all(folder);
  if (missed > 0) std::fprintf(stderr, "error: bars missed: %d\n", missed);
  return missed == 0 ? 0 : 1;
}
