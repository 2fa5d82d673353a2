#include "platform/base/Text.h"

#include <gtest/gtest.h>

#include "platform/base/PathText.h"
#include "platform/base/Value.h"

namespace vornix::text {
namespace {

TEST(Text, ReadsIntegersByTheirLeadingDigits) {
  EXPECT_EQ(integerValue("12abc"), 12);
  EXPECT_EQ(integerValue(" 42"), 42);
  EXPECT_EQ(integerValue("-3"), -3);
  EXPECT_EQ(integerValue("+5"), 5);
  EXPECT_EQ(integerValue("0x10"), 0);
  EXPECT_EQ(integerValue("--3"), 0);
  EXPECT_EQ(integerValue("YES"), 0);
  EXPECT_EQ(integerValue(""), 0);
  EXPECT_EQ(integerValue("\xC2\xA0"
                         "1"),
            1);
}

TEST(Text, SaturatesIntegersThatOverflow) {
  EXPECT_EQ(integerValue("99999999999999999999"), INT64_MAX);
  EXPECT_EQ(integerValue("-99999999999999999999"), INT64_MIN);
}

TEST(Text, ReadsBooleansByTheirFirstMeaningfulCharacter) {
  for (const auto* yes : {"YES", "t", " y", "1", "-1", "01", "9", "tomato"})
    EXPECT_TRUE(boolValue(yes)) << yes;
  for (const auto* no : {"0", "00", "+0", "NO", "on", "off", "", "0x10"})
    EXPECT_FALSE(boolValue(no)) << no;
}

TEST(Text, TrimsUnicodeWhiteSpaceAtBothEnds) {
  EXPECT_EQ(trim(" \t\n a b \xE2\x80\x8B\xC2\xA0\r\n"), "a b");
  EXPECT_EQ(trim("\xE3\x80\x80"), "");
  EXPECT_EQ(trim("\xFF \xFF"), "\xFF \xFF");
  EXPECT_EQ(trim("\xEF\xBB\xBF"
                 "a"),
            "\xEF\xBB\xBF"
            "a");
}

TEST(Text, SplitsKeepingEmptyPieces) {
  EXPECT_EQ(split("a::b:", ":"), (std::vector<std::string>{"a", "", "b", ""}));
  EXPECT_EQ(split("", ":"), (std::vector<std::string>{""}));
  EXPECT_EQ(split("ab", ""), (std::vector<std::string>{"ab"}));
}

TEST(Text, ReplacesWithoutLookingIntoInsertedText) {
  EXPECT_EQ(replaceAll("aaa", "aa", "a"), "aa");
  EXPECT_EQ(replaceAll("a&b&", "&", "%26"), "a%26b%26");
  EXPECT_EQ(replaceAll("abc", "", "x"), "abc");
}

TEST(Text, TellsWellFormedUtf8) {
  EXPECT_TRUE(isValidUtf8("a\xC3\xA9\xF0\x9F\x98\x80"));
  EXPECT_FALSE(isValidUtf8("\xED\xA0\x80"));
  EXPECT_FALSE(isValidUtf8("\xC0\x80"));
  EXPECT_FALSE(isValidUtf8("\xC3"));
}

TEST(PathText, TakesPathsApart) {
  struct Row {
    const char *path, *last, *extension, *withoutExtension, *withoutLast;
  };
  const Row rows[] = {{"/tmp/scratch.tiff", "scratch.tiff", "tiff", "/tmp/scratch", "/tmp"},
                      {"/tmp/scratch", "scratch", "", "/tmp/scratch", "/tmp"},
                      {"/tmp/", "tmp", "", "/tmp", "/"},
                      {"/tmp", "tmp", "", "/tmp", "/"},
                      {"scratch///", "scratch", "", "scratch", ""},
                      {"/", "/", "", "/", "/"},
                      {"//", "/", "", "/", "/"},
                      {"///", "/", "", "/", "/"},
                      {"", "", "", "", ""},
                      {"a/b/", "b", "", "a/b", "a"},
                      {"scratch.tiff", "scratch.tiff", "tiff", "scratch", ""},
                      {"scratch..tiff", "scratch..tiff", "tiff", "scratch.", ""},
                      {"scratch.bundle/", "scratch.bundle", "bundle", "scratch", ""},
                      {".tiff", ".tiff", "", ".tiff", ""},
                      {".bashrc", ".bashrc", "", ".bashrc", ""},
                      {"/x/.bashrc", ".bashrc", "", "/x/.bashrc", "/x"},
                      {".scratch.tiff", ".scratch.tiff", "tiff", ".scratch", ""},
                      {"/tmp/lock/", "lock", "", "/tmp/lock", "/tmp"},
                      {"foo.tar.gz", "foo.tar.gz", "gz", "foo.tar", ""},
                      {"a.b/c", "c", "", "a.b/c", "a.b"}};
  for (const auto& row : rows) {
    EXPECT_EQ(lastPathComponent(row.path), row.last) << row.path;
    EXPECT_EQ(pathExtension(row.path), row.extension) << row.path;
    EXPECT_EQ(deletingPathExtension(row.path), row.withoutExtension) << row.path;
    EXPECT_EQ(deletingLastPathComponent(row.path), row.withoutLast) << row.path;
  }
}

TEST(PathText, EndsTheSearchForAnExtensionWhereItCannotGoOn) {
  struct Row {
    const char *path, *extension, *withoutExtension;
  };
  const Row rows[] = {{"foo.tar gz", "", "foo.tar gz"},
                      {"foo. txt", "", "foo. txt"},
                      {"foo .txt", "txt", "foo "},
                      {"a.\u061cb", "", "a.\u061cb"},
                      {"a.b\u200e", "", "a.b\u200e"},
                      {"a.\u202eb", "", "a.\u202eb"},
                      {"a.\u2069", "", "a.\u2069"},
                      {"\u200fa.b", "b", "\u200fa"},
                      {"a.", "", "a."},
                      {"a./", "", "a."},
                      {".", "", "."},
                      {"..", "", ".."},
                      {"...", "", "..."},
                      {"..b", "", "..b"},
                      {"..b.c", "c", "..b"},
                      {"a//b.c", "c", "a/b"},
                      {"\xFF.\xFE", "\xFE", "\xFF"},
                      {"a.\xED\xA0\x80", "\xED\xA0\x80", "a"},
                      {"e\u0301.\u0301", "\u0301", "e\u0301"},
                      {"\U0001F9C0.\U0001F9C0", "\U0001F9C0", "\U0001F9C0"}};
  for (const auto& row : rows) {
    EXPECT_EQ(pathExtension(row.path), row.extension) << row.path;
    EXPECT_EQ(deletingPathExtension(row.path), row.withoutExtension) << row.path;
  }
}

TEST(PathText, AppendsWithExactlyOneSlash) {
  for (const auto& [path, component] :
       {std::pair("/tmp", "x"), {"/tmp/", "x"}, {"/tmp", "/x"}, {"/tmp/", "/x/"}}) {
    EXPECT_EQ(appendingPathComponent(path, component), "/tmp/x");
  }
  EXPECT_EQ(appendingPathComponent("/", "x"), "/x");
  EXPECT_EQ(appendingPathComponent("", "x"), "x");
  EXPECT_EQ(appendingPathComponent("", "/x"), "/x");
  EXPECT_EQ(appendingPathComponent("a/", ""), "a");
}

TEST(Value, ComparesNumbersByValueAcrossTypes) {
  EXPECT_EQ(Value(true), Value(1));
  EXPECT_EQ(Value(1), Value(1.0));
  EXPECT_NE(Value(0), Value(0.5));
  EXPECT_NE(Value("1"), Value(1));
  EXPECT_NE(Value(std::int64_t{9007199254740993}), Value(9007199254740992.0));
}

TEST(Value, ConvertsAsThePlatformDoes) {
  EXPECT_EQ(Value(3.9).integerValue(), 3);
  EXPECT_EQ(Value(-0.9).integerValue(), 0);
  EXPECT_EQ(Value(1e300).integerValue(), INT64_MAX);
  EXPECT_TRUE(Value(0.5).boolValue());
  EXPECT_EQ(Value(Date{}).integerValue(), 0);
  EXPECT_EQ(Value(Array{1}).integerValue(), 0);
  EXPECT_EQ(Value("3 days").integerValue(), 3);
}

TEST(Dictionary, KeepsTheOrderInWhichKeysWereFirstSet) {
  Dictionary dictionary{{"b", 1}, {"a", 2}};
  dictionary.set("b", 3);
  dictionary.set("c", 4);
  EXPECT_TRUE(dictionary.remove("a"));
  EXPECT_FALSE(dictionary.remove("a"));
  std::string order;
  for (const auto& [key, value] : dictionary) order += key + value.description();
  EXPECT_EQ(order, "b3c4");
  EXPECT_EQ(dictionary, (Dictionary{{"c", 4}, {"b", 3}}));
}

}  // namespace
}  // namespace vornix::text
