#include "platform/desktop/FileViewer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <memory>
#include <string>
#include <vector>

#include "platform/base/FileUrl.h"
#include "tests/contract/support/FileManagerProgram.h"
#include "tests/contract/support/LinuxFileViewerWorld.h"
#include "tests/fakes/FakeFileViewer.h"

namespace vornix::contract {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class FakeDesktop {
 public:
  FakeDesktop() { viewer_.canSelect = viewer_.canOpen = false; }

  FileViewer& viewer() { return viewer_; }
  void startFileManager() { viewer_.canSelect = true; }
  void breakFileManager() { viewer_.canSelect = false; }
  void installOpener() { viewer_.canOpen = true; }
  void enter(const std::string& folder) { viewer_.currentFolder = folder; }
  std::vector<std::string> selected() { return viewer_.selected; }
  // Waits for the folder that is opened next.
  std::string opened() { return viewer_.opened.empty() ? "none" : viewer_.opened.back(); }

 private:
  fakes::FakeFileViewer viewer_;
};

class RealDesktop {
 public:
  FileViewer& viewer() { return *viewer_; }
  void startFileManager() { manager_ = std::make_unique<FileManagerProgram>(); }
  void breakFileManager() { manager_->refusesAll = true; }
  void installOpener() { world_.installOpener(); }
  static void enter(const std::string& folder) { ASSERT_EQ(chdir(folder.c_str()), 0); }
  std::vector<std::string> selected() {
    std::vector<std::string> paths;
    for (const std::string& url : manager_->asked.events())
      paths.push_back(text::pathOfFileUrl(url).value_or("not a file's URL: " + url));
    return paths;
  }
  std::string opened() { return world_.awaitOpened(); }

 private:
  LinuxFileViewerWorld world_;
  std::unique_ptr<FileManagerProgram> manager_;
  std::unique_ptr<FileViewer> viewer_ = world_.makeViewer();
};

template <typename Desktop>
class FileViewerContract : public testing::Test {
 protected:
  FileViewerContract() {
    setDiagnosticReceiver([this](std::string_view line) { diagnostics_.emplace_back(line); });
  }
  ~FileViewerContract() override { setDiagnosticReceiver({}); }

  bool select(std::string_view path) { return desktop_.viewer().select(path); }

  std::vector<std::string> diagnostics_;
  Desktop desktop_;
};

using Desktops = testing::Types<FakeDesktop, RealDesktop>;
TYPED_TEST_SUITE(FileViewerContract, Desktops);

TYPED_TEST(FileViewerContract, SelectsTheItemInTheFileManager) {
  this->desktop_.startFileManager();
  EXPECT_TRUE(this->select("/usr/bin"));
  EXPECT_TRUE(this->select("/"));
  EXPECT_THAT(this->desktop_.selected(), ElementsAre("/usr/bin", "/"));
  EXPECT_THAT(this->diagnostics_, IsEmpty());
}

TYPED_TEST(FileViewerContract, NamesEveryItemByItsBytes) {
  this->desktop_.startFileManager();
  const std::vector<std::string> paths{"/a b",          "/100%",         "/a#b?c",
                                       "/a\nb",         "/caf\u00e9",    "/cafe\u0301",
                                       "/\xFF\xFE",     "/\xED\xA0\x80", "/\U0001F9C0.txt",
                                       "/\u05d0\u05d1", "/a\u200bb",     "/\ufeff",
                                       "/\ud55c\uae00", "/\\\"'&;",      "/.hidden",
                                       "/a;b=c",        "/-flag",        "/~",
                                       "/a%20b",        "/\u0130\u00df"};
  for (const std::string& path : paths) EXPECT_TRUE(this->select(path)) << path;
  EXPECT_EQ(this->desktop_.selected(), paths);
}

TYPED_TEST(FileViewerContract, DropsSlashesThatMeanNothing) {
  this->desktop_.startFileManager();
  EXPECT_TRUE(this->select("//usr///bin//"));
  EXPECT_THAT(this->desktop_.selected(), ElementsAre("/usr/bin"));
}

TYPED_TEST(FileViewerContract, StartsARelativePathAtTheCurrentFolder) {
  this->desktop_.startFileManager();
  this->desktop_.enter("/usr");
  EXPECT_TRUE(this->select("bin/env"));
  EXPECT_THAT(this->desktop_.selected(), ElementsAre("/usr/bin/env"));
}

TYPED_TEST(FileViewerContract, OpensTheFolderWithoutAFileManager) {
  this->desktop_.installOpener();
  for (const auto& [path, folder] : {std::pair("/usr/bin/env", "/usr/bin"),
                                     {"/usr/bin/", "/usr"},
                                     {"/usr", "/"},
                                     {"/", "/"},
                                     {"/caf\xE9/-a b/c", "/caf\xE9/-a b"}}) {
    EXPECT_TRUE(this->select(path));
    EXPECT_EQ(this->desktop_.opened(), folder);
  }
  EXPECT_THAT(this->diagnostics_, IsEmpty());
}

TYPED_TEST(FileViewerContract, OpensTheFolderWhenTheFileManagerFails) {
  this->desktop_.installOpener();
  this->desktop_.startFileManager();
  this->desktop_.breakFileManager();
  EXPECT_TRUE(this->select("/usr/bin"));
  EXPECT_EQ(this->desktop_.opened(), "/usr");
  EXPECT_THAT(this->desktop_.selected(), IsEmpty());
}

TYPED_TEST(FileViewerContract, SaysOnceThatNothingCanShowIt) {
  EXPECT_FALSE(this->select("/usr/bin"));
  EXPECT_THAT(this->diagnostics_, SizeIs(1));
}

TYPED_TEST(FileViewerContract, RefusesAPathThatNamesNothing) {
  this->desktop_.startFileManager();
  EXPECT_FALSE(this->select(""));
  EXPECT_FALSE(this->select(std::string_view("/usr\0bin", 8)));
  EXPECT_THAT(this->desktop_.selected(), IsEmpty());
  EXPECT_THAT(this->diagnostics_, SizeIs(2));
}

}  // namespace
}  // namespace vornix::contract
