#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/NSWorkspace+Additions.h"
#include "platform/base/Diagnostics.h"
#include "tests/fakes/FakeFileTree.h"
#include "tests/fakes/FakeFileViewer.h"

namespace vornix {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class RevealInFinder : public testing::Test {
 protected:
  RevealInFinder() {
    setDiagnosticReceiver([this](std::string_view line) { diagnostics_.emplace_back(line); });
    tree_.clear();
    viewer_.selected.clear();
    viewer_.opened.clear();
  }
  ~RevealInFinder() override { setDiagnosticReceiver({}); }
  void reveal(std::string_view path) { revealInFinderFile(NSWorkspace::sharedWorkspace(), path); }

  fakes::FakeFileTree& tree_ = fakes::fileTree();
  fakes::FakeFileViewer& viewer_ = fakes::fileViewer();
  std::vector<std::string> diagnostics_;
};

TEST_F(RevealInFinder, SelectsFilesFoldersAndLinksThatLeadSomewhere) {
  tree_.addFile("/home/ada/report.txt");
  tree_.addLink("/home/link", "ada");
  tree_.addFile("/home/caf\xE9\xFF");
  for (const char* path : {"/home/ada/report.txt", "/home/ada", "/home/link", "/home/caf\xE9\xFF"})
    reveal(path);
  EXPECT_THAT(viewer_.selected,
              ElementsAre("/home/ada/report.txt", "/home/ada", "/home/link", "/home/caf\xE9\xFF"));
}

TEST_F(RevealInFinder, OpensNothingForAPathThatDoesNotExist) {
  tree_.addFile("/home/file");
  tree_.addLink("/home/dangling", "missing");
  for (const std::string_view path :
       {std::string_view("/home/missing"), std::string_view("/home/dangling"),
        std::string_view("/home/file/x"), std::string_view(), std::string_view("/home\0", 6)}) {
    reveal(path);
  }
  EXPECT_THAT(viewer_.selected, IsEmpty());
  EXPECT_THAT(viewer_.opened, IsEmpty());
  EXPECT_THAT(diagnostics_, IsEmpty());
}

TEST_F(RevealInFinder, AsksTheSharedWorkspaceWhicheverIsTheReceiver) {
  fakes::FakeFileViewer another;
  tree_.addFolder("/home");
  revealInFinderFile(NSWorkspace(sharedApplicationService(), another), "/home");
  EXPECT_THAT(another.selected, IsEmpty());
  EXPECT_THAT(viewer_.selected, ElementsAre("/home"));
}

// Names as a disk may hold them: any bytes but a slash and a zero.
constexpr std::array<std::string_view, 26> kNames{"report.txt",
                                                  " ",
                                                  " leading and trailing ",
                                                  "line\nend",
                                                  "tab\t\r",
                                                  "100%",
                                                  "%41",
                                                  "%@ %s %n",
                                                  "it's \"quoted\"",
                                                  "$(id);`id`&|*?",
                                                  "-rf",
                                                  "file:",
                                                  "\\back",
                                                  "#?",
                                                  "caf\u00E9",
                                                  "cafe\u0301",
                                                  "\uD55C",
                                                  "\u1112\u1161\u11AB",
                                                  "\u03A3\u03C2",
                                                  "\u0130\u00DF",
                                                  "\u200B",
                                                  "\uFEFFa",
                                                  "\u05D0\u202E",
                                                  "\U0001F600",
                                                  "\xED\xA0\xBD",
                                                  "\xFF\xC3"};

TEST_F(RevealInFinder, SelectsAnItemOfWhateverName) {
  for (const std::string_view name : kNames) {
    const std::string file = "/home/" + std::string(name);
    tree_.addFile(file);
    viewer_.selected.clear();
    reveal(file);
    EXPECT_THAT(viewer_.selected, ElementsAre(file));
  }
  EXPECT_THAT(diagnostics_, IsEmpty());
}

// Names that only look alike are others.
TEST_F(RevealInFinder, OpensNothingForANameThatIsNotThatOfTheItem) {
  for (const std::string_view name : kNames) {
    tree_.clear();
    tree_.addFile("/home/" + std::string(name));
    for (const std::string_view other : kNames) {
      if (other != name) reveal("/home/" + std::string(other));
    }
    reveal("/home/" + std::string(name) + std::string("\0x", 2));
    reveal("/home/" + std::string(name) + "x");
    EXPECT_THAT(viewer_.selected, IsEmpty()) << name;
  }
  EXPECT_THAT(viewer_.opened, IsEmpty());
  EXPECT_THAT(diagnostics_, IsEmpty());
}

TEST_F(RevealInFinder, OpensNothingForAHugePath) {
  reveal("/" + std::string(10'000'000, 'x'));
  reveal(std::string(1'000'000, '/') + "missing");
  EXPECT_THAT(viewer_.selected, IsEmpty());
}

}  // namespace
}  // namespace vornix
