#include "tests/contract/support/FileWorld.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "tests/contract/support/KindOfVolume.h"

namespace vornix::contract {
namespace {

constexpr int kFailed = 1;
constexpr int kMountsRefused = 77;

bool write(const char* path, const std::string& text) {
  std::ofstream file(path);
  file << text << std::flush;
  return file.good();
}

// Mounts made from now on are seen by this process only. Without privileges it takes a user
// namespace, in which the process is root.
bool goApart() {
  const std::string user = std::to_string(geteuid());
  const std::string group = std::to_string(getegid());
  if (unshare(CLONE_NEWNS) != 0) {
    const bool isRoot = unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0 &&
                        write("/proc/self/setgroups", "deny") &&
                        write("/proc/self/uid_map", "0 " + user + " 1") &&
                        write("/proc/self/gid_map", "0 " + group + " 1");
    if (!isRoot) return false;
  }
  return ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

[[noreturn]] void end(int status) {
  std::fflush(nullptr);
  _exit(status);
}

}  // namespace

bool isRootOfTheMachine() {
  unsigned long inside = 1;
  unsigned long outside = 1;
  unsigned long count = 0;
  std::ifstream("/proc/self/uid_map") >> inside >> outside >> count;
  return geteuid() == 0 && inside == 0 && outside == 0 && count > 1;
}

LinuxFileWorld::LinuxFileWorld()
    : LinuxFileWorld(
          folderOn(KindOfVolume::ext4).value_or(std::filesystem::temp_directory_path().string())) {}

LinuxFileWorld::LinuxFileWorld(const std::string& parent) : folder_(parent) {}

void LinuxFileWorld::folder(const std::string& name) {
  std::filesystem::create_directories(path(name));
}

void LinuxFileWorld::file(const std::string& name) {
  std::filesystem::create_directories(std::filesystem::path(path(name)).parent_path());
  EXPECT_TRUE(std::ofstream(path(name)).good()) << name;
}

void LinuxFileWorld::link(const std::string& name, const std::string& target) {
  std::filesystem::create_directories(std::filesystem::path(path(name)).parent_path());
  EXPECT_EQ(symlink(target.c_str(), path(name).c_str()), 0) << name;
}

void LinuxFileWorld::enter(const std::string& name) {
  EXPECT_EQ(chdir(path(name).c_str()), 0) << name;
}

void LinuxFileWorld::mount(const std::string& name) {
  attach("none", name, "tmpfs", 0);
}

void LinuxFileWorld::bind(const std::string& source, const std::string& name) {
  attach(path(source), name, nullptr, MS_BIND);
}

void LinuxFileWorld::mountImage(const std::string& name, const std::string& options) {
  folder(name + ".images");
  mount(name + ".images");
  const std::string image = path(name + ".images/image");
  const std::string make = "mkfs.ext4 -q -F " + options + " " + image + " 16M";
  const std::string attach = "mount -o loop " + image + " " + path(name);
  // NOLINTNEXTLINE(cert-env33-c,concurrency-mt-unsafe): a test's own words, on one thread.
  if (std::system((make + " && " + attach).c_str()) != 0) refuse();
}

void LinuxFileWorld::forbidChangesIn(const std::string& name) {
  becomeSomebodyElse();
  EXPECT_EQ(chmod(path(name).c_str(), 0555), 0) << name;
}

void LinuxFileWorld::forbidReading(const std::string& name) {
  becomeSomebodyElse();
  EXPECT_EQ(chmod(path(name).c_str(), 0), 0) << name;
}

// Nothing hinders root, so the story goes on as somebody else.
void LinuxFileWorld::becomeSomebodyElse() {
  constexpr uid_t kNobody = 65534;
  if (geteuid() != 0) return;
  EXPECT_EQ(chown(root_.c_str(), kNobody, kNobody), 0);
  for (const auto& item : std::filesystem::recursive_directory_iterator(root_))
    EXPECT_EQ(lchown(item.path().c_str(), kNobody, kNobody), 0) << item.path();
  EXPECT_EQ(seteuid(kNobody), 0);
}

void LinuxFileWorld::mountSmall(const std::string& name, const std::string& options) {
  attach("none", name, "tmpfs", 0, options.c_str());
}

void LinuxFileWorld::makeReadOnly(const std::string& name) {
  attach("none", name, nullptr, MS_REMOUNT | MS_RDONLY);
}

void LinuxFileWorld::attach(const std::string& source, const std::string& name, const char* type,
                            unsigned long flags, const char* options) {
  requireApart();
  EXPECT_EQ(::mount(source.c_str(), path(name).c_str(), type, flags, options), 0) << name;
}

void LinuxFileWorld::requireApart() {
  if (!isApart_ && !goApart()) refuse();
  isApart_ = true;
}

void LinuxFileWorld::refuse() {
  end(testing::Test::HasFailure() ? kFailed : kMountsRefused);
}

LinuxFileWorld::Outcome LinuxFileWorld::playApart(const std::function<void()>& story) {
  std::fflush(nullptr);
  const pid_t child = fork();
  if (child == 0) {
    story();
    end(testing::Test::HasFailure() ? kFailed : 0);
  }
  int status = 0;
  EXPECT_EQ(waitpid(child, &status, 0), child);
  if (WIFEXITED(status) && WEXITSTATUS(status) == kMountsRefused) return Outcome::mayNotMount;
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "see above";
  return Outcome::played;
}

}  // namespace vornix::contract
