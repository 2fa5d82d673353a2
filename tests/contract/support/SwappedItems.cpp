#include "tests/contract/support/SwappedItems.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

namespace vornix::contract {
namespace {

namespace fs = std::filesystem;

const std::vector<std::string>& names() {
  static const auto& all =
      *new std::vector<std::string>{"folder 0", "folder 1", "folder 2", "file 0", "file 1"};
  return all;
}

bool isFile(const std::string& name) {
  return name.starts_with("file");
}

void write(const std::string& path, const char* text) {
  std::ofstream(path) << text;
}

}  // namespace

SwappedItems::SwappedItems(LinuxFileWorld& world, std::string folder)
    : world_(world), folder_(std::move(folder)) {
  for (const char* name : {"canary/sub", "links", "fresh", "old"})
    world.folder(folder_ + "/" + name);
  for (const char* name : {"canary/file", "canary/sub/file"}) write(at(name), kSecret);
  renew();
}

void SwappedItems::swap(int times) const {
  // A test that has failed does not wait.
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  std::vector<std::pair<std::string, std::string>> pairs;
  for (const std::string& name : names())
    pairs.emplace_back(at("doomed/" + name), at("links/" + name));
  for (int swaps = 0; swaps < times;) {
    for (const auto& [one, other] : pairs)
      swaps += renameat2(AT_FDCWD, one.c_str(), AT_FDCWD, other.c_str(), RENAME_EXCHANGE) == 0;
  }
  _exit(0);
}

void SwappedItems::renew() const {
  world_.folder(folder_ + "/doomed");
  for (const std::string& name : names()) {
    renewDoomed(name);
    renewLink(name);
  }
}

void SwappedItems::renewDoomed(const std::string& name) const {
  const std::string fresh = at("fresh/" + name);
  if (!isFile(name)) fs::create_directories(fresh + "/sub/deeper");
  write(isFile(name) ? fresh : fresh + "/sub/file", "doomed");
  (void)renameat2(AT_FDCWD, fresh.c_str(), AT_FDCWD, at("doomed/" + name).c_str(),
                  RENAME_NOREPLACE);
}

void SwappedItems::renewLink(const std::string& name) const {
  const std::string link = at("links/" + name);
  std::error_code gone;
  if (fs::is_symlink(fs::symlink_status(link, gone))) return;
  // What was exchanged for a link that is gone now. Removed where it is not swapped.
  const std::string old = at("old/" + name);
  if (rename(link.c_str(), old.c_str()) == 0) fs::remove_all(old);
  // Within one volume, and told so that the kernel would not see it leave the folder's own.
  (void)symlink(isFile(name) ? "../canary/file" : "../canary", link.c_str());
}

}  // namespace vornix::contract
