#include "platform/files/NSURL.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "platform/base/Format.h"
#include "tests/fakes/FakeFileTree.h"

namespace vornix {
namespace {

using namespace std::string_view_literals;

TEST(NSURLTest, EscapesEveryByteOfAPathThatIsNoPlainLetter) {
  struct Row {
    std::string_view path;
    bool isDirectory;
    std::string_view text;
  };
  constexpr Row rows[] = {{"/", false, "file:///"},
                          {"/", true, "file:///"},
                          {"//", false, "file:///"},
                          {"/tmp/a b", true, "file:///tmp/a%20b/"},
                          {"/tmp/a b/", true, "file:///tmp/a%20b/"},
                          {"/tmp/a b/", false, "file:///tmp/a%20b"},
                          {"/tmp/a b", false, "file:///tmp/a%20b"},
                          {"/50%", false, "file:///50%25"},
                          {"/50%25", false, "file:///50%2525"},
                          {"/line\nbreak", false, "file:///line%0Abreak"},
                          {"/?a#b", false, "file:///%3Fa%23b"},
                          {"/a:b;c&d=e", false, "file:///a%3Ab%3Bc%26d%3De"},
                          {"/~ada/.x_y-z", false, "file:///~ada/.x_y-z"},
                          {"/\xFF\xFE", false, "file:///%FF%FE"},
                          {"/\xED\xA0\x80", false, "file:///%ED%A0%80"},
                          {"/caf\u00e9", false, "file:///caf%C3%A9"},
                          {"/cafe\u0301", false, "file:///cafe%CC%81"},
                          {"/\U0001F4BE", true, "file:///%F0%9F%92%BE/"},
                          {"/\u200b\ufeff", false, "file:///%E2%80%8B%EF%BB%BF"},
                          {"/\u05d0", false, "file:///%D7%90"},
                          {"/\ud55c", false, "file:///%ED%95%9C"},
                          {"/\u0130\u00df\u03c2", false, "file:///%C4%B0%C3%9F%CF%82"}};
  for (const Row& row : rows) {
    const NSURL url = NSURL::fileURLWithPath(row.path, row.isDirectory);
    EXPECT_EQ(url.absoluteString(), row.text);
    EXPECT_EQ(text::format("%@", url.description()), row.text);
    EXPECT_EQ(url.hasDirectoryPath(), row.text.ends_with('/'));
    const auto again = NSURL::URLWithString(url.absoluteString());
    ASSERT_TRUE(again.has_value()) << row.text;
    EXPECT_EQ(*again, url);
    EXPECT_EQ(again->path(), url.path());
    EXPECT_TRUE(again->isFileURL());
  }
}

TEST(NSURLTest, KeepsThePathsBytesWithoutASlashAtTheEnd) {
  const std::string huge = "/" + std::string(1'000'000, '\xFF');
  struct Row {
    std::string_view path;
    std::string_view expected;
  };
  const Row rows[] = {{"/", "/"},         {"///", "/"},         {"/a/", "/a"},
                      {"/a//", "/a"},     {"//a//b", "//a//b"}, {"/a/../b", "/a/../b"},
                      {"/a/.", "/a/."},   {"/ ", "/ "},         {"/%41", "/%41"},
                      {"/\xC3", "/\xC3"}, {huge, huge}};
  for (const Row& row : rows) {
    for (const bool isDirectory : {false, true})
      EXPECT_EQ(NSURL::fileURLWithPath(row.path, isDirectory).path(), row.expected);
  }
}

TEST(NSURLTest, AsksTheDiskWhetherAFolderIsMeant) {
  fakes::FakeFileMachine machine;
  machine.tree.addFolder("/folder/inner");
  machine.tree.addFile("/folder/file");
  machine.tree.addLink("/link", "folder");
  struct Row {
    std::string_view path;
    std::string_view text;
  };
  constexpr Row rows[] = {{"/folder", "file:///folder/"},
                          {"/folder/file", "file:///folder/file"},
                          {"/link", "file:///link/"},
                          {"/missing", "file:///missing"},
                          {"/missing/", "file:///missing/"}};
  for (const Row& row : rows) {
    EXPECT_EQ(NSURL::fileURLWithPath(row.path, machine.files).absoluteString(), row.text);
    const auto root = NSURL::fileURLWithPath("/", true);
    EXPECT_EQ(root.URLByAppendingPathComponent(row.path, machine.files).absoluteString(), row.text);
  }
}

TEST(NSURLTest, AsksTheProcesssOwnFileManagerWithoutAnother) {
  fakes::fileTree().addFolder("/folder");
  EXPECT_EQ(NSURL::fileURLWithPath("/folder").absoluteString(), "file:///folder/");
  const auto root = NSURL::fileURLWithPath("/", true);
  EXPECT_EQ(root.URLByAppendingPathComponent("folder").absoluteString(), "file:///folder/");
  EXPECT_TRUE(root.checkResourceIsReachableAndReturnError());
}

TEST(NSURLTest, StartsRelativePathsAtTheCurrentFolder) {
  fakes::fileTree().currentFolder = "/home/ada";
  EXPECT_EQ(NSURL::fileURLWithPath("x", false).path(), "/home/ada/x");
  EXPECT_EQ(NSURL::fileURLWithPath("", true).path(), "/home/ada");
  fakes::FakeFileMachine machine;
  machine.tree.currentFolder = "/srv";
  EXPECT_EQ(NSURL::fileURLWithPath("x", machine.files).path(), "/srv/x");
}

TEST(NSURLTest, HasNoPathForARelativeOneWithoutACurrentFolder) {
  fakes::fileTree().currentFolder = "";
  fakes::FakeFileMachine machine;
  machine.tree.currentFolder = "";
  machine.tree.addFolder("/tmp");
  for (const NSURL& url : {NSURL::fileURLWithPath("tmp", true), NSURL::fileURLWithPath("tmp/"),
                           NSURL::fileURLWithPath("tmp", machine.files)}) {
    EXPECT_EQ(url.path(), "");
    EXPECT_EQ(url.absoluteString(), "file://");
    EXPECT_TRUE(url.isFileURL());
    EXPECT_FALSE(url.hasDirectoryPath());
    EXPECT_FALSE(url.checkResourceIsReachableAndReturnError(machine.files, nullptr));
    EXPECT_EQ(url.URLByAppendingPathComponent("tmp", true), url);
  }
  EXPECT_EQ(NSURL::fileURLWithPath("/tmp", machine.files).path(), "/tmp");
}

TEST(NSURLTest, AppendsAComponentInTheFormThatIsAskedFor) {
  const auto folder = NSURL::fileURLWithPath("/a b", true);
  EXPECT_EQ(folder.URLByAppendingPathComponent("c%", true).absoluteString(), "file:///a%20b/c%25/");
  EXPECT_EQ(folder.URLByAppendingPathComponent("c/d", false).path(), "/a b/c/d");
  EXPECT_EQ(folder.URLByAppendingPathComponent("/c//", false).path(), "/a b/c");
  EXPECT_EQ(folder.URLByAppendingPathComponent("", true), folder);
  const auto page = NSURL::URLWithString("http://host/x");
  ASSERT_TRUE(page.has_value());
  EXPECT_EQ(page->URLByAppendingPathComponent("c", true), *page);
}

TEST(NSURLTest, ReadsThePathOfAnyUrl) {
  struct Row {
    std::string_view text;
    std::string_view path;
    bool isFile;
  };
  constexpr Row rows[] = {{"file:///a%20b", "/a b", true},
                          {"FILE:///a", "/a", true},
                          {"file://localhost/a/b/", "/a/b", true},
                          {"file:/a", "/a", true},
                          {"file:///", "/", true},
                          {"file://", "", true},
                          {"file:///a?b#c", "/a", true},
                          {"file:///a%3Fb%23c", "/a?b#c", true},
                          {"file:///%FF", "/\xFF", true},
                          {"file:///a%00b", "", true},
                          {"file:a", "", true},
                          {"http://host:80/a/b/?q=/c", "/a/b", false},
                          {"http://host", "", false},
                          {"http://host?q", "", false},
                          {"http://[::1]/a", "/a", false},
                          {"mailto:a@b", "", false},
                          {"/a/b", "/a/b", false},
                          {"a/b", "a/b", false},
                          {"//host/a", "/a", false},
                          {"1a:/b", "1a:/b", false},
                          {":/a", ":/a", false},
                          {"x+y-z.1:/a", "/a", false}};
  for (const Row& row : rows) {
    const auto url = NSURL::URLWithString(row.text);
    ASSERT_TRUE(url.has_value()) << row.text;
    EXPECT_EQ(url->path(), row.path) << row.text;
    EXPECT_EQ(url->isFileURL(), row.isFile) << row.text;
    EXPECT_EQ(url->absoluteString(), row.text);
  }
}

TEST(NSURLTest, RefusesTextsThatAreNoUrl) {
  for (const std::string_view text : {""sv,
                                      " "sv,
                                      "file:///a b"sv,
                                      "file:///\xC3\xA9"sv,
                                      "file:///\xFF"sv,
                                      "a\nb"sv,
                                      "a\0b"sv,
                                      "a\"b"sv,
                                      "<a>"sv,
                                      "a\\b"sv,
                                      "a^b"sv,
                                      "a`b"sv,
                                      "{a}"sv,
                                      "a|b"sv,
                                      "a#b#c"sv,
                                      "a%"sv,
                                      "a%2"sv,
                                      "a%zz"sv,
                                      "%"sv,
                                      "\x7F"sv,
                                      "\u200b"sv}) {
    EXPECT_EQ(NSURL::URLWithString(text), std::nullopt) << text;
  }
}

TEST(NSURLTest, TellsWhetherSomethingStandsThereWithoutFollowingIt) {
  fakes::FakeFileMachine machine;
  machine.tree.addFile("/file");
  machine.tree.addLink("/dangling", "missing");
  const auto reachable = [&machine](std::string_view path, std::optional<NSError>* error) {
    return NSURL::fileURLWithPath(path, false)
        .checkResourceIsReachableAndReturnError(machine.files, error);
  };
  std::optional<NSError> error;
  EXPECT_TRUE(reachable("/file", &error));
  EXPECT_TRUE(reachable("/dangling", &error));
  EXPECT_EQ(error, std::nullopt);
  EXPECT_FALSE(reachable("/missing", &error));
  ASSERT_TRUE(error.has_value());
  EXPECT_EQ(error->domain, NSCocoaErrorDomain);
  EXPECT_EQ(error->code, NSFileReadNoSuchFileError);
  EXPECT_FALSE(reachable("/missing", nullptr));
  const auto page = NSURL::URLWithString("http://host/file");
  ASSERT_TRUE(page.has_value());
  EXPECT_FALSE(page->checkResourceIsReachableAndReturnError(machine.files, &error));
  EXPECT_EQ(error->code, NSFileReadUnsupportedSchemeError);
}

TEST(NSURLTest, FindsAFileAgainByItsBookmarkWhileItExists) {
  fakes::FakeFileMachine machine;
  for (const std::string_view path : {"/a b/\xFF", "/a b", "/"}) {
    machine.tree.addFolder("/a b/\xFF");
    const auto data = NSURL::fileURLWithPath(path, true).bookmarkData();
    ASSERT_TRUE(data.has_value());
    const auto url = NSURL::URLByResolvingBookmarkData(*data, 0x300, machine.files);
    ASSERT_TRUE(url.has_value()) << path;
    EXPECT_EQ(url->path(), path);
  }
  const auto gone = NSURL::fileURLWithPath("/gone", false).bookmarkData();
  ASSERT_TRUE(gone.has_value());
  EXPECT_EQ(NSURL::URLByResolvingBookmarkData(*gone, 0, machine.files), std::nullopt);
}

TEST(NSURLTest, MakesNothingOfDataThatIsNoBookmark) {
  fakes::FakeFileMachine machine;
  machine.tree.addFolder("/x");
  const auto good = NSURL::fileURLWithPath("/x", true).bookmarkData();
  ASSERT_TRUE(good.has_value());
  for (std::size_t length = 0; length < good->size() - 1; ++length) {
    const Data cut(good->begin(), good->begin() + static_cast<std::ptrdiff_t>(length));
    EXPECT_EQ(NSURL::URLByResolvingBookmarkData(cut, 0, machine.files), std::nullopt) << length;
  }
  Data foreign = *good;
  foreign.front() = std::byte{0};
  EXPECT_EQ(NSURL::URLByResolvingBookmarkData(foreign, 0, machine.files), std::nullopt);
  Data withZero = *good;
  withZero.push_back(std::byte{0});
  EXPECT_EQ(NSURL::URLByResolvingBookmarkData(withZero, 0, machine.files), std::nullopt);
  const auto page = NSURL::URLWithString("http://host/x");
  ASSERT_TRUE(page.has_value());
  EXPECT_EQ(page->bookmarkData(), std::nullopt);
}

}  // namespace
}  // namespace vornix
