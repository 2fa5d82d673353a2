#include "platform/linux/desktop/applications/KeyFile.h"

#include <gtest/gtest.h>

namespace vornix::desktop {
namespace {

std::optional<std::string> valueOf(std::string_view contents, std::string_view key) {
  return KeyFile::parse(contents).string("G", key);
}

TEST(KeyFile, ReadsKeysOfGroups) {
  const KeyFile file = KeyFile::parse("K=0\n[G]\n# K=1\n\nK = 2 \r\n[H]\nK=3\nL==x=");
  EXPECT_EQ(file.string("G", "K"), "2");
  EXPECT_EQ(file.string("H", "K"), "3");
  EXPECT_EQ(file.string("H", "L"), "=x=");
  EXPECT_EQ(file.string("G", "L"), std::nullopt);
  EXPECT_EQ(file.string("", "K"), std::nullopt);
  EXPECT_TRUE(file.hasGroup("H"));
  EXPECT_FALSE(file.hasGroup("I"));
}

TEST(KeyFile, UndoesTheEscapesOfStringsAndKeepsOthers) {
  EXPECT_EQ(valueOf("[G]\nK=a\\sb\\nc\\td\\re\\\\f", "K"), "a b\nc\td\re\\f");
  EXPECT_EQ(valueOf("[G]\nK=\\\"\\$\\x", "K"), "\\\"\\$\\x");
  EXPECT_EQ(valueOf("[G]\nK=end\\", "K"), "end\\");
}

TEST(KeyFile, PicksTheClosestLanguage) {
  const KeyFile file = KeyFile::parse(
      "[G]\nN=none\nN[de]=de\nN[de_AT]=at\nN[de@euro]=euro\nN[de_AT@euro]=ateuro\nM=m\n");
  const std::pair<const char*, const char*> cases[] = {{"de_AT.UTF-8@euro", "ateuro"},
                                                       {"de_AT.UTF-8", "at"},
                                                       {"de_DE@euro", "euro"},
                                                       {"de_CH.UTF-8", "de"},
                                                       {"de", "de"},
                                                       {"fr_FR", "none"},
                                                       {"C", "none"},
                                                       {"", "none"},
                                                       {"@.__", "none"}};
  for (const auto& [locale, expected] : cases)
    EXPECT_EQ(file.localizedString("G", "N", locale), expected) << locale;
  EXPECT_EQ(file.localizedString("G", "M", "de_AT"), "m");
}

TEST(KeyFile, TakesOnlyTheTwoWordsForTrue) {
  const KeyFile file = KeyFile::parse("[G]\nA=true\nB=1\nC=yes\nD=True\nE=");
  EXPECT_TRUE(file.boolean("G", "A"));
  EXPECT_TRUE(file.boolean("G", "B"));
  for (const auto* key : {"C", "D", "E", "F"}) EXPECT_FALSE(file.boolean("G", key)) << key;
}

TEST(KeyFile, PassesOverWhatSaysNothing) {
  const KeyFile file = KeyFile::parse("\xFF\xFE\n[\n]\n[]\n[G\nG]\n=x\n[G]\nword\n=\n = v\nK=v");
  EXPECT_EQ(file.string("G", "K"), "v");
  EXPECT_EQ(file.string("G", ""), std::nullopt);
}

TEST(KeyFile, LetsTheLastOfSeveralEqualKeysCount) {
  EXPECT_EQ(valueOf("[G]\nK=1\nK=2\n[H]\n[G]\nK=3\n", "K"), "3");
}

}  // namespace
}  // namespace vornix::desktop
