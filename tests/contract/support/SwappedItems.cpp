#include "tests/contract/support/SwappedItems.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>
#include <utility>

#include "tests/contract/support/ForkedProcess.h"
#include "tests/contract/support/TreeText.h"

namespace vornix::contract {
namespace {

namespace fs = std::filesystem;

bool isFile(const std::string& name) {
  return name.starts_with("file");
}

void writeText(const fs::path& path, const char* text) {
  EXPECT_TRUE((std::ofstream(path) << text).good()) << path;
}

}  // namespace

SwappedItems::SwappedItems(LinuxFileWorld& world, const std::string& folder, SwapPlan plan)
    : plan_(std::move(plan)), folder_(world.path(folder)) {
  for (const char* name : {"canary/sub", "links", "fresh", "old"})
    fs::create_directories(folder_ / name);
  for (const char* name : {"file", "sub/file", "shared"}) writeText(canary_ / name, kSecret);
  std::error_code taken;
  fs::create_hard_link(canary_ / "shared", canary_ / "other name", taken);
  renew();
}

void SwappedItems::race(int swaps, const std::function<void()>& attempt) const {
  const std::string before = textOfTree(canary_);
  const ForkedProcess swapper([this, swaps] { swap(swaps); });
  int status = 0;
  while (waitpid(-1, &status, WNOHANG) == 0) {
    attempt();
    EXPECT_EQ(textOfTree(canary_), before);
    // What was swapped wrongly may never be swapped again.
    if (testing::Test::HasFailure()) swapper.signal(SIGKILL);
    renew();
  }
  EXPECT_EQ(status, 0);
}

void SwappedItems::swap(int times) const {
  // A test that has failed does not wait.
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  const fs::path shared = canary_ / "shared";
  const fs::path planted = doomed_ / "planted";
  std::vector<std::pair<fs::path, fs::path>> pairs;
  for (const std::string& name : plan_.names) pairs.emplace_back(doomed_ / name, links_ / name);
  for (int swaps = 0; swaps < times;) {
    if (plan_.plantsNames) (void)link(shared.c_str(), planted.c_str());
    for (const auto& [one, other] : pairs)
      swaps += renameat2(AT_FDCWD, one.c_str(), AT_FDCWD, other.c_str(), RENAME_EXCHANGE) == 0;
  }
  _exit(0);
}

// Things are made where nothing is swapped, and then moved to their place.
void SwappedItems::renew() const {
  fs::create_directories(doomed_);
  for (const std::string& name : plan_.names) {
    renewDoomed(name);
    renewLink(name);
  }
}

void SwappedItems::renewDoomed(const std::string& name) const {
  const fs::path fresh = folder_ / "fresh" / name;
  if (!isFile(name)) fs::create_directories(fresh / "sub/deeper");
  writeText(isFile(name) ? fresh : fresh / "sub/file", "doomed");
  (void)renameat2(AT_FDCWD, fresh.c_str(), AT_FDCWD, (doomed_ / name).c_str(), RENAME_NOREPLACE);
}

void SwappedItems::renewLink(const std::string& name) const {
  std::error_code gone;
  if (fs::is_symlink(fs::symlink_status(links_ / name, gone))) return;
  // What was exchanged for a link that is gone now. Removed where it is not swapped.
  const fs::path old = folder_ / "old" / name;
  if (rename((links_ / name).c_str(), old.c_str()) == 0) fs::remove_all(old);
  // Within one volume, and told so that the kernel would not see it leave the folder's own.
  const fs::path target = canary_.lexically_relative(doomed_);
  fs::create_symlink(isFile(name) ? target / "file" : target, links_ / name, gone);
}

}  // namespace vornix::contract
