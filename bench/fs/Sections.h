#pragma once

#include <functional>
#include <string>
#include <vector>

namespace vornix::bench {

// One topic. All are prepared before the first one is measured: some file systems are slow to make
// files right after a mass removal.
struct Section {
  std::string name;
  std::function<void()> prepare;
  // Prints its rows; answers how many bars were missed.
  std::function<int()> measure;
};

Section walkSection();
Section removalSection();
Section secureRemovalSection();
Section largeSecureRemovalSection();

// Folders to make trees in: one on the disk and one in memory.
std::vector<std::string> benchFolders();
// What the name of a row in such a folder ends with: ", ext4".
std::string endingFor(const std::string& folder);

}  // namespace vornix::bench
