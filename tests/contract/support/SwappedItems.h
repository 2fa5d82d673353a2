#pragma once

#include <string>

#include "tests/contract/support/FileWorld.h"

namespace vornix::contract {

// How often items are exchanged in the way that every system takes, and in each other one.
inline constexpr int kManySwaps = 100'000;
inline constexpr int kSomeSwaps = 20'000;

// Folders and files to be removed or moved, links to what must stay, and a process that exchanges
// them again and again.
class SwappedItems {
 public:
  // In a folder that exists.
  SwappedItems(LinuxFileWorld& world, std::string folder);

  // As a process's whole life: until so many were exchanged for a link or back.
  [[noreturn]] void swap(int times) const;
  // Makes what is missing, where nothing is swapped, and moves it to its place.
  void renew() const;
  // The swapped items' folder.
  [[nodiscard]] std::string doomed() const { return at("doomed"); }
  // What the links lead to, and the text of the files there.
  [[nodiscard]] std::string canary() const { return at("canary"); }
  static constexpr const char* kSecret = "what must stay as it is";

 private:
  [[nodiscard]] std::string at(const std::string& name) const {
    return world_.path(folder_ + "/" + name);
  }
  void renewDoomed(const std::string& name) const;
  void renewLink(const std::string& name) const;

  LinuxFileWorld& world_;
  std::string folder_;
};

}  // namespace vornix::contract
