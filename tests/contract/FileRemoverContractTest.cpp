#include "platform/files/FileRemover.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "tests/contract/support/KindOfVolume.h"
#include "tests/fakes/FakeFileRemover.h"
#include "tests/support/ScratchFolder.h"

namespace vornix::contract {
namespace {

constexpr RemovefileResult kRemoved{0, 0};

RemovefileResult failure(int errorNumber) {
  return {-1, errorNumber};
}

class FakeWorld {
 public:
  FakeWorld() { tree_.addFolder("/root"); }
  static bool exists() { return true; }

  [[nodiscard]] FileRemover& remover() { return remover_; }
  [[nodiscard]] static std::string path(const std::string& name) { return "/root/" + name; }
  void file(const std::string& name) { tree_.addFile(path(name)); }
  void folder(const std::string& name) { tree_.addFolder(path(name)); }
  void link(const std::string& name, const std::string& target) {
    tree_.addLink(path(name), target);
  }
  void enter(const std::string& name) { tree_.currentFolder = path(name); }
  // Of the item itself.
  [[nodiscard]] bool has(const std::string& name) const {
    return tree_.resolve(path(name), false).has_value();
  }

 private:
  fakes::FakeFileTree tree_;
  fakes::FakeFileRemover remover_{tree_};
};

template <KindOfVolume Kind>
class LinuxWorld {
 public:
  static bool exists() { return folderOn(Kind).has_value(); }

  [[nodiscard]] static FileRemover& remover() { return sharedFileRemover(); }
  [[nodiscard]] std::string path(const std::string& name) const { return folder_.path(name); }
  void file(const std::string& name) { folder_.write(name, "contents"); }
  void folder(const std::string& name) { std::filesystem::create_directories(path(name)); }
  void link(const std::string& name, const std::string& target) {
    EXPECT_EQ(symlink(target.c_str(), path(name).c_str()), 0);
  }
  void enter(const std::string& name) { EXPECT_EQ(chdir(path(name).c_str()), 0); }
  [[nodiscard]] bool has(const std::string& name) const {
    struct stat status {};
    return lstat(path(name).c_str(), &status) == 0;
  }

 private:
  tests::ScratchFolder folder_{*folderOn(Kind)};
};

template <typename World>
class FileRemoverContract : public testing::Test {
 protected:
  void SetUp() override {
    if (!World::exists()) GTEST_SKIP() << "NOT TESTED: no folder on such a file system";
    world_ = std::make_unique<World>();
    world().file("file");
    world().file("folder/inner/file");
    world().folder("empty");
    world().link("link", "file");
    world().link("link-to-folder", "folder");
    world().link("link-to-nothing", "missing");
    world().link("link-to-itself", "link-to-itself");
  }
  World& world() { return *world_; }
  RemovefileResult remove(const std::string& name, std::uint32_t flags) {
    return world().remover().removefile(world().path(name), flags);
  }

 private:
  std::unique_ptr<World> world_;
};

using Worlds =
    testing::Types<FakeWorld, LinuxWorld<KindOfVolume::ext4>, LinuxWorld<KindOfVolume::tmpfs>>;
TYPED_TEST_SUITE(FileRemoverContract, Worlds);

TYPED_TEST(FileRemoverContract, RemovesItemsWithAllThatIsInThem) {
  for (const char* name : {"folder", "file", "empty"}) {
    EXPECT_EQ(this->remove(name, 0x11), kRemoved) << name;
    EXPECT_FALSE(this->world().has(name)) << name;
  }
  EXPECT_TRUE(this->world().has("link"));
}

TYPED_TEST(FileRemoverContract, RemovesALinkAndNotWhatItLeadsTo) {
  for (const char* name : {"link", "link-to-folder", "link-to-nothing", "link-to-itself"}) {
    EXPECT_EQ(this->remove(name, 0x11), kRemoved) << name;
    EXPECT_FALSE(this->world().has(name)) << name;
  }
  EXPECT_TRUE(this->world().has("file"));
  EXPECT_TRUE(this->world().has("folder/inner/file"));
}

TYPED_TEST(FileRemoverContract, RemovesTheFolderThatAPathLeadsToInWhateverWay) {
  this->world().folder("one/two");
  this->world().link("to-one", "one");
  EXPECT_EQ(this->remove("one/two/.", 0x11), kRemoved);
  EXPECT_FALSE(this->world().has("one/two"));
  EXPECT_EQ(this->remove("to-one/", 0x11), kRemoved);
  EXPECT_FALSE(this->world().has("one"));
  EXPECT_TRUE(this->world().has("to-one"));
  EXPECT_EQ(this->remove("folder/inner/..", 0x11), kRemoved);
  EXPECT_FALSE(this->world().has("folder"));
}

TYPED_TEST(FileRemoverContract, RemovesAnEmptyFolderAloneWhereItShallNotLookIntoIt) {
  for (const std::uint32_t flags : {0x00U, 0x10U}) {
    this->world().folder("empty");
    EXPECT_EQ(this->remove("folder", flags), failure(ENOTEMPTY));
    EXPECT_TRUE(this->world().has("folder/inner/file"));
    EXPECT_EQ(this->remove("empty", flags), kRemoved);
    EXPECT_FALSE(this->world().has("empty"));
    this->world().file("another");
    EXPECT_EQ(this->remove("another", flags), kRemoved);
    EXPECT_FALSE(this->world().has("another"));
  }
}

TYPED_TEST(FileRemoverContract, RemovesHostileNamesAsTheyStand) {
  for (const std::string& name :
       {std::string(255, 'x'), std::string("\xFF\xFE"), std::string("a\nb"), std::string(" "),
        std::string("-rf"), std::string("%@*?"), std::string("...")}) {
    this->world().file("names/" + name);
    this->world().file("alone/" + name);
    EXPECT_EQ(this->remove("alone/" + name, 0x11), kRemoved) << name;
    EXPECT_FALSE(this->world().has("alone/" + name)) << name;
  }
  EXPECT_EQ(this->remove("names//", 0x11), kRemoved);
  EXPECT_FALSE(this->world().has("names"));
  EXPECT_TRUE(this->world().has("alone"));
}

TYPED_TEST(FileRemoverContract, SaysWhyItCannotRemove) {
  struct Row {
    std::string name;
    int errorNumber;
  };
  const Row rows[] = {{"missing", ENOENT},
                      {"missing/", ENOENT},
                      {"missing/x", ENOENT},
                      {"file/", ENOTDIR},
                      {"file/x", ENOTDIR},
                      {"file/.", ENOTDIR},
                      {"link/", ENOTDIR},
                      {"link-to-nothing/", ENOENT},
                      {"link-to-itself/", ELOOP},
                      {std::string("file\0", 5), ENOENT},
                      {std::string("file\0x", 6), ENOENT},
                      {std::string(256, 'x'), ENAMETOOLONG},
                      {std::string(10'000, 'x'), ENAMETOOLONG}};
  for (const Row& row : rows)
    EXPECT_EQ(this->remove(row.name, 0x11), failure(row.errorNumber)) << row.name;
  EXPECT_EQ(this->world().remover().removefile("", 0x11), failure(ENOENT));
  EXPECT_TRUE(this->world().has("file"));
  EXPECT_TRUE(this->world().has("link"));
}

// Without the flag that would look into it, lest a fault empties the machine.
TYPED_TEST(FileRemoverContract, NeverRemovesTheRoot) {
  for (const char* path : {"/", "//", "/.", "/.."})
    EXPECT_EQ(this->world().remover().removefile(path, 0x10), failure(EBUSY)) << path;
}

TYPED_TEST(FileRemoverContract, StartsRelativePathsAtTheCurrentFolder) {
  this->world().enter("folder");
  EXPECT_EQ(this->world().remover().removefile("inner", 0x11), kRemoved);
  EXPECT_FALSE(this->world().has("folder/inner"));
  this->world().enter("empty");
  EXPECT_EQ(this->world().remover().removefile(".", 0x11), kRemoved);
  EXPECT_FALSE(this->world().has("empty"));
  EXPECT_TRUE(this->world().has("file"));
}

}  // namespace
}  // namespace vornix::contract
