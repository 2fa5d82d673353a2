#include "platform/files/FileAttributes.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "platform/base/Text.h"
#include "tests/contract/support/KindOfVolume.h"
#include "tests/fakes/FakeFileAttributes.h"
#include "tests/support/ScratchFolder.h"

namespace vornix::contract {
namespace {

struct Times {
  std::int64_t modification;
  std::int64_t access;
};

class FakeWorld {
 public:
  FakeWorld() { tree_.addFolder("/root"); }
  static bool exists() { return true; }

  [[nodiscard]] const FileAttributes& attributes() const { return attributes_; }
  [[nodiscard]] static std::string path(const std::string& name) { return "/root/" + name; }
  void file(const std::string& name) { tree_.addFile(path(name)); }
  void folder(const std::string& name) { tree_.addFolder(path(name)); }
  void link(const std::string& name, const std::string& target) {
    tree_.addLink(path(name), target);
  }
  void setTimes(const std::string& name, Times times) {
    attributes_.setDetails(path(name),
                           {.modificationTime = times.modification, .accessTime = times.access});
  }
  void addAttribute(const std::string& name, const std::string& attribute) {
    attributes_.addExtendedAttribute(path(name), attribute);
  }

 private:
  fakes::FakeFileTree tree_;
  fakes::FakeFileAttributes attributes_{tree_};
};

template <KindOfVolume Kind>
class LinuxWorld {
 public:
  static bool exists() { return folderOn(Kind).has_value(); }

  [[nodiscard]] static const FileAttributes& attributes() { return sharedFileAttributes(); }
  [[nodiscard]] std::string path(const std::string& name) const { return folder_.path(name); }
  void file(const std::string& name) { folder_.write(name, "x"); }
  void folder(const std::string& name) { std::filesystem::create_directories(path(name)); }
  void link(const std::string& name, const std::string& target) {
    EXPECT_EQ(symlink(target.c_str(), path(name).c_str()), 0);
  }
  void setTimes(const std::string& name, Times times) {
    const timespec both[] = {{.tv_sec = times.access, .tv_nsec = 999'999'999},
                             {.tv_sec = times.modification, .tv_nsec = 1}};
    EXPECT_EQ(utimensat(AT_FDCWD, path(name).c_str(), both, 0), 0);
  }
  void addAttribute(const std::string& name, const std::string& attribute) {
    EXPECT_EQ(lsetxattr(path(name).c_str(), ("user." + attribute).c_str(), "v", 1, 0), 0)
        << attribute;
  }

 private:
  tests::ScratchFolder folder_{*folderOn(Kind)};
};

template <typename World>
class FileAttributesContract : public testing::Test {
 protected:
  void SetUp() override {
    if (!World::exists()) GTEST_SKIP() << "NOT TESTED: no folder on such a file system";
    world_ = std::make_unique<World>();
    world().file("file");
    world().file("folder/inner");
    world().link("link", "file");
    world().link("link-to-folder", "folder");
    world().link("link-to-nothing", "missing");
    world().link("link-to-itself", "link-to-itself");
  }
  World& world() { return *world_; }

  // Sorted, without the system's own.
  std::vector<std::string> names(const std::string& name) {
    std::string list = "kept";
    EXPECT_EQ(world().attributes().extendedAttributeNames(world().path(name), list), 0) << name;
    EXPECT_TRUE(list.empty() || list.back() == '\0');
    auto names = text::split(list, std::string_view("\0", 1));
    names.pop_back();
    std::erase_if(names, [](const std::string& each) { return each.starts_with("security."); });
    std::ranges::sort(names);
    return names;
  }

 private:
  std::unique_ptr<World> world_;
};

using Worlds =
    testing::Types<FakeWorld, LinuxWorld<KindOfVolume::ext4>, LinuxWorld<KindOfVolume::tmpfs>>;
TYPED_TEST_SUITE(FileAttributesContract, Worlds);

TYPED_TEST(FileAttributesContract, TellWhenAFileWasChangedAndUsedInWholeSeconds) {
  for (const Times& times : {Times{1'000'000'000, 2'000'000'000}, Times{2'000'000'000, 0},
                             Times{-5, -86400}, Times{0, -1}, Times{4'102'444'800, 1}}) {
    this->world().setTimes("file", times);
    for (const char* name : {"file", "link", "./link", "folder/../file"}) {
      FileDetails details;
      EXPECT_EQ(this->world().attributes().details(this->world().path(name), details), 0) << name;
      EXPECT_EQ(details.modificationTime, times.modification) << name;
      EXPECT_EQ(details.accessTime, times.access) << name;
      EXPECT_EQ(details.flags, 0U) << name;
    }
  }
}

TYPED_TEST(FileAttributesContract, NameTheExtendedAttributesOfTheItemItself) {
  auto& world = this->world();
  for (const char* name : {"one", "com.apple.rootless", "user.twice", "\xFF\n"})
    world.addAttribute("file", name);
  world.addAttribute("folder", "of-folder");
  const std::vector<std::string> all{"com.apple.rootless", "one", "user.twice", "\xFF\n"};
  EXPECT_EQ(this->names("file"), all);
  EXPECT_EQ(this->names("folder"), std::vector<std::string>{"of-folder"});
  EXPECT_EQ(this->names("folder/inner"), std::vector<std::string>());
  EXPECT_EQ(this->names("link"), std::vector<std::string>());
  EXPECT_EQ(this->names("link-to-nothing"), std::vector<std::string>());
  EXPECT_EQ(this->names("link-to-folder/"), std::vector<std::string>{"of-folder"});
}

TYPED_TEST(FileAttributesContract, SayWhyAnItemCannotBeLookedAtAndLeaveTheResultsAlone) {
  struct Row {
    std::string name;
    int detailsError;
    int namesError;
  };
  const Row rows[] = {{"missing", ENOENT, ENOENT},
                      {"file/x", ENOTDIR, ENOTDIR},
                      {"link-to-nothing", ENOENT, 0},
                      {"link-to-itself", ELOOP, 0},
                      {"link-to-itself/x", ELOOP, ELOOP},
                      {std::string("file\0", 5), ENOENT, ENOENT},
                      {std::string("file\0x", 6), ENOENT, ENOENT},
                      {std::string(256, 'x'), ENAMETOOLONG, ENAMETOOLONG},
                      {std::string(10'000, 'x'), ENAMETOOLONG, ENAMETOOLONG},
                      {"..", 0, 0},
                      {"folder/", 0, 0}};
  const auto& attributes = this->world().attributes();
  for (const Row& row : rows) {
    const std::string path = this->world().path(row.name);
    FileDetails details{.birthTime = 42};
    EXPECT_EQ(attributes.details(path, details), row.detailsError) << row.name;
    EXPECT_EQ(details.birthTime == 42, row.detailsError != 0) << row.name;
    std::string names = "kept";
    EXPECT_EQ(attributes.extendedAttributeNames(path, names), row.namesError) << row.name;
    EXPECT_EQ(names == "kept", row.namesError != 0) << row.name;
  }
  FileDetails details;
  std::string names;
  EXPECT_EQ(attributes.details("", details), ENOENT);
  EXPECT_EQ(attributes.extendedAttributeNames("", names), ENOENT);
}

}  // namespace
}  // namespace vornix::contract
