#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "tests/contract/support/FileWorld.h"

namespace vornix::contract {

// How often items are exchanged in the way that every system takes, and in each other one.
inline constexpr int kManySwaps = 100'000;
inline constexpr int kSomeSwaps = 20'000;

struct SwapPlan {
  // The folder of the swapped items, in the race's own; empty for that one itself.
  std::string folder = "doomed";
  // Those that begin with "file" are files.
  std::vector<std::string> names{"folder 0", "folder 1", "folder 2", "file 0", "file 1"};
  // Whether new names of a file that must stay come there, too.
  bool plantsNames = false;
};

// Folders and files to be removed or moved, links to what must stay, and a process that exchanges
// them again and again.
class SwappedItems {
 public:
  // In a folder that exists, and may have had them before.
  SwappedItems(LinuxFileWorld& world, const std::string& folder, SwapPlan plan = {});

  // Makes the attempt again and again, with everything in its place before each, until so many were
  // exchanged for a link or back. What must stay has to stay as it was.
  void race(int swaps, const std::function<void()>& attempt) const;

  // The swapped items' folder.
  [[nodiscard]] std::string doomed() const { return doomed_; }
  // The text of the files that must stay.
  static constexpr const char* kSecret = "what must stay as it is";

 private:
  [[noreturn]] void swap(int times) const;
  void renew() const;
  void renewDoomed(const std::string& name) const;
  void renewLink(const std::string& name) const;

  SwapPlan plan_;
  std::filesystem::path folder_;
  std::filesystem::path doomed_ = plan_.folder.empty() ? folder_ : folder_ / plan_.folder;
  std::filesystem::path canary_ = folder_ / "canary";
  std::filesystem::path links_ = folder_ / "links";
};

}  // namespace vornix::contract
