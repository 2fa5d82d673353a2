#include "platform/system/ResourceFiles.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "platform/base/Diagnostics.h"
#include "platform/system/NSBundle.h"
#include "tests/fakes/FakeResourceFiles.h"
#include "tests/support/ScratchFolder.h"

namespace vornix {
namespace {

class FakeSetting {
 public:
  FakeSetting() {
    files_.setFile("/b/text", "bytes");
    files_.setFile("/b/de.lproj/L.strings", "\"k\" = \"v\";");
    files_.setPropertyList("/b/Info.plist", Dictionary{{"Key", "value"}});
    files_.setApplicationInfo(
        "/b/x.desktop",
        {{"CFBundleIdentifier", "x"}, {"CFBundleName", "X"}, {"CFBundleVersion", "3.4.0"}});
  }
  [[nodiscard]] const ResourceFiles& files() const { return files_; }
  [[nodiscard]] std::string root() const { return "/b"; }

 private:
  fakes::FakeResourceFiles files_;
};

class LinuxSetting {
 public:
  LinuxSetting() {
    folder_.write("text", "bytes");
    folder_.write("de.lproj/L.strings", "\"k\" = \"v\";");
    folder_.write("Info.plist", "<plist><dict><key>Key</key><string>value</string></dict></plist>");
    folder_.write("x.desktop", "[Desktop Entry]\nName=X\nX-CFBundleVersion=3.4.0\n");
  }
  [[nodiscard]] const ResourceFiles& files() const { return sharedResourceFiles(); }
  [[nodiscard]] std::string root() const { return folder_.path(); }

 private:
  tests::ScratchFolder folder_;
};

template <typename Setting>
class ResourceFilesContractTest : public testing::Test {
 protected:
  [[nodiscard]] std::string path(const std::string& name) const {
    return setting_.root() + "/" + name;
  }
  [[nodiscard]] const ResourceFiles& files() const { return setting_.files(); }

  Setting setting_;
};

using Settings = testing::Types<FakeSetting, LinuxSetting>;
TYPED_TEST_SUITE(ResourceFilesContractTest, Settings);

TYPED_TEST(ResourceFilesContractTest, AnswersAFilesBytes) {
  EXPECT_EQ(this->files().contents(this->path("text")), "bytes");
  EXPECT_EQ(this->files().contents(this->path("missing")), std::nullopt);
  EXPECT_EQ(this->files().contents(this->path("text/inside")), std::nullopt);
}

TYPED_TEST(ResourceFilesContractTest, ListsAFoldersNamesInOrder) {
  EXPECT_EQ(this->files().namesInFolder(this->path("de.lproj")),
            std::vector<std::string>{"L.strings"});
  const auto names = this->files().namesInFolder(this->setting_.root());
  EXPECT_TRUE(std::ranges::is_sorted(names));
  EXPECT_TRUE(std::ranges::includes(names, std::vector{"Info.plist", "de.lproj", "text"}));
  EXPECT_TRUE(this->files().namesInFolder(this->path("missing")).empty());
}

TYPED_TEST(ResourceFilesContractTest, ParsesPropertyListsOnly) {
  const auto bytes = this->files().contents(this->path("Info.plist"));
  ASSERT_TRUE(bytes.has_value());
  EXPECT_EQ(this->files().parsePropertyList(*bytes), Value(Dictionary{{"Key", "value"}}));
  EXPECT_EQ(this->files().parsePropertyList("bytes"), std::nullopt);
  EXPECT_EQ(this->files().parsePropertyList(""), std::nullopt);
}

TYPED_TEST(ResourceFilesContractTest, KnowsAnApplicationByItsBundle) {
  EXPECT_EQ(this->files().applicationInfo(this->path("x.desktop")),
            (Dictionary{
                {"CFBundleIdentifier", "x"}, {"CFBundleName", "X"}, {"CFBundleVersion", "3.4.0"}}));
  EXPECT_EQ(this->files().applicationInfo(this->path("y.desktop")), std::nullopt);
  EXPECT_EQ(this->files().applicationInfo(this->path("text")), std::nullopt);
}

TYPED_TEST(ResourceFilesContractTest, CarriesABundle) {
  const NSBundle bundle(this->setting_.root(), {"de-DE"}, std::nullopt, this->files());
  EXPECT_EQ(bundle.objectForInfoDictionaryKey("Key"), Value("value"));
  EXPECT_EQ(bundle.localizedStringForKey("k", "", "L"), "v");
}

TEST(LinuxApplicationInfoTest, TakesTheVersionOfAnImageWhereThereIsNoOther) {
  const tests::ScratchFolder folder;
  const auto image =
      folder.write("com.example.a.desktop", "[Desktop Entry]\nX-AppImage-Version=1.2\nName=A\n");
  EXPECT_EQ(NSBundle::infoDictionaryAtApplicationPath(image),
            (Dictionary{{"CFBundleIdentifier", "com.example.a"},
                        {"CFBundleName", "A"},
                        {"CFBundleVersion", "1.2"}}));
  const auto both =
      folder.write("b.desktop", "[Desktop Entry]\nX-AppImage-Version=1.2\nX-CFBundleVersion=3\n");
  EXPECT_EQ(*NSBundle::infoDictionaryAtApplicationPath(both)->find("CFBundleVersion"), Value("3"));
  const auto neither = folder.write("c.desktop", "[Desktop Entry]\nName=C\n");
  EXPECT_FALSE(NSBundle::infoDictionaryAtApplicationPath(neither)->contains("CFBundleVersion"));
  const auto none = folder.write("d.desktop", "garbage");
  EXPECT_EQ(NSBundle::infoDictionaryAtApplicationPath(none), std::nullopt);
}

TEST(LinuxResourceFilesTest, ReportsAFileThatCannotBeRead) {
  const tests::ScratchFolder folder;
  std::vector<std::string> lines;
  setDiagnosticReceiver([&](std::string_view line) { lines.emplace_back(line); });
  EXPECT_EQ(sharedResourceFiles().contents(folder.path()), std::nullopt);
  setDiagnosticReceiver({});
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_NE(lines.front().find(folder.path()), std::string::npos);
}

}  // namespace
}  // namespace vornix
