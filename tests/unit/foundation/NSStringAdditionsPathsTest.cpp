#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <string_view>

#include "foundation/NSString+NSStringAdditions.h"
#include "tests/fakes/FakeFileTree.h"

namespace vornix {
namespace {

// The process's own file tree, so that the receivers need nothing beside themselves.
class NSStringAdditionsPaths : public testing::Test {
 protected:
  NSStringAdditionsPaths() {
    tree_.clear();
    tree_.currentFolder = "/Volumes";
  }
  ~NSStringAdditionsPaths() override { tree_.clear(); }

  fakes::FakeFileTree& tree_ = fakes::fileTree();
};

TEST_F(NSStringAdditionsPaths, FindsTheVolumeThatHoldsTheReceiver) {
  tree_.addFile("/Volumes/disk/a.b/file");
  tree_.mountAt("/Volumes/disk");
  tree_.addFile("/Volumes/disk/inner/\xFF");
  tree_.mountAt("/Volumes/disk/inner");
  tree_.addFolder("/Volumes/\u05d0 \u200b");
  tree_.mountAt("/Volumes/\u05d0 \u200b");
  tree_.addLink("/Volumes/link", "disk/inner");
  tree_.addLink("/Volumes/dangling", "missing");
  struct Row {
    std::string_view path;
    std::optional<std::string> volume;
  };
  const Row rows[] = {{"/", "/"},
                      {"//", "/"},
                      {"/Volumes", "/"},
                      {"/Volumes/", "/"},
                      {"/Volumes/disk", "/Volumes/disk"},
                      {"/Volumes/disk/", "/Volumes/disk"},
                      {"/Volumes//disk//a.b", "/Volumes/disk"},
                      {"/Volumes/disk/a.b/file", "/Volumes/disk"},
                      {"/Volumes/disk/..", "/"},
                      {"/Volumes/disk/inner", "/Volumes/disk/inner"},
                      {"/Volumes/disk/inner/\xFF", "/Volumes/disk/inner"},
                      {"/Volumes/disk/inner/../a.b", "/Volumes/disk"},
                      {"/Volumes/link", "/"},
                      {"/Volumes/link/", "/Volumes/disk/inner"},
                      {"/Volumes/link/\xFF", "/Volumes/disk/inner"},
                      {"/Volumes/dangling", "/"},
                      {"/Volumes/dangling/", std::nullopt},
                      {"/Volumes/\u05d0 \u200b", "/Volumes/\u05d0 \u200b"},
                      {"disk", "/Volumes/disk"},
                      {"./disk/a.b", "/Volumes/disk"},
                      {".", "/"},
                      {"/Volumes/disk/a.b/file/", std::nullopt},
                      {"/Volumes/missing", std::nullopt},
                      {"/Volumes/disk/missing", std::nullopt},
                      {"~", std::nullopt},
                      {"file:///Volumes/disk", std::nullopt},
                      {"", std::nullopt},
                      {std::string_view("/\0", 2), std::nullopt}};
  for (const Row& row : rows) EXPECT_EQ(volumePath(row.path), row.volume) << row.path;
}

TEST_F(NSStringAdditionsPaths, LeavesExistingFoldersTheirExtension) {
  for (const char* folder : {"/Volumes/Vornix.app", "/Volumes/a.b.c", "/Volumes/.hidden.d",
                             "/Volumes/caf\u00e9.\ud55c", "/Volumes/\xFF.\xFE"}) {
    tree_.addFolder(folder);
  }
  tree_.addLink("/Volumes/link.app", "Vornix.app");
  for (const std::string_view path :
       {"/Volumes/Vornix.app", "/Volumes/Vornix.app/", "//Volumes///Vornix.app//", "Vornix.app",
        "./Vornix.app", "Vornix.app/.", "/Volumes/a.b.c", "/Volumes/.hidden.d",
        "/Volumes/caf\u00e9.\ud55c", "/Volumes/\xFF.\xFE", "link.app", "link.app/", "/", "//",
        "/Volumes/", "..", "Vornix.app/../a.b.c"}) {
    EXPECT_EQ(stringByDeletingRealPathExtension(path), path);
  }
}

TEST_F(NSStringAdditionsPaths, DeletesTheExtensionOfAllElse) {
  tree_.addFile("/Volumes/file.txt");
  tree_.addFile("/Volumes/Vornix.app/inner.d");
  tree_.addLink("/Volumes/link.txt", "file.txt");
  tree_.addLink("/Volumes/dangling.app", "missing.app");
  struct Row {
    std::string_view path;
    std::string_view without;
  };
  constexpr Row rows[] = {{"/Volumes/file.txt", "/Volumes/file"},
                          {"file.txt", "file"},
                          {"link.txt", "link"},
                          {"dangling.app", "dangling"},
                          {"Vornix.app/inner.d", "Vornix.app/inner"},
                          {"/Volumes/file.txt/", "/Volumes/file"},
                          {"/missing.app", "/missing"},
                          {"/missing.app/", "/missing"},
                          {"//missing//a.tar.gz", "/missing/a.tar"},
                          {"/missing.app/name", "/missing.app/name"},
                          {"name", "name"},
                          {".bashrc", ".bashrc"},
                          {".scratch.tiff", ".scratch"},
                          {"scratch..tiff", "scratch."},
                          {"a.", "a."},
                          {"...", "..."},
                          {"foo. txt", "foo. txt"},
                          {"foo .txt", "foo "},
                          {"caf\u00e9.\u00e9", "caf\u00e9"},
                          {"\U0001F9C0.\U0001F9C0", "\U0001F9C0"},
                          {"\u05d0.\u05d1", "\u05d0"},
                          {"a.\u200f"
                           "b",
                           "a.\u200f"
                           "b"},
                          {"a.\u200b", "a"},
                          {"\uFEFF.\uFEFF", "\uFEFF"},
                          {"e\u0301.e\u0301", "e\u0301"},
                          {"\xFF.\xFE", "\xFF"},
                          {"a.\xED\xA0\x80", "a"},
                          {"", ""},
                          {std::string_view("file.txt\0", 9), "file"},
                          {std::string_view("a\0b.c", 5), std::string_view("a\0b", 3)}};
  for (const Row& row : rows)
    EXPECT_EQ(stringByDeletingRealPathExtension(row.path), row.without) << row.path;
}

TEST_F(NSStringAdditionsPaths, TakesHugePaths) {
  const std::string huge(10'000'000, 'x');
  EXPECT_EQ(stringByDeletingRealPathExtension(huge + ".y"), huge);
  EXPECT_EQ(volumePath(huge), std::nullopt);
}

}  // namespace
}  // namespace vornix
