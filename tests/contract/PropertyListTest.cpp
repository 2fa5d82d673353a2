#include "platform/linux/preferences/PropertyList.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>

namespace vornix {
namespace {

// Reading these may fail, and must do nothing worse.
void readAll(const std::string& bytes) {
  const PropertyListNode node = parsePropertyListNode(bytes);
  if (node) static_cast<void>(valueOfNode(node.get()));
}

Dictionary someOfEverything() {
  return {{"Date", Date{5.5}},
          {"Schlüssel", Array{1, "two", 0.5, "Grüße", true}},
          {"Data", Data(20)},
          {"Inner", Dictionary{{"Key", "value"}, {"Ключ", -1}}}};
}

TEST(PropertyListTest, ReadsAsNothingWhatWouldUnfoldOrNestWithoutEnd) {
  std::string deep = "<plist>";
  for (int level = 0; level < 200000; ++level) deep += "<array>";
  EXPECT_EQ(parsePropertyListNode(deep), nullptr);

  // Each array refers to the next one sixteen times; the last one to itself.
  constexpr int kLevels = 16;
  std::string bomb = "bplist00";
  std::string offsets;
  for (int level = 0; level < kLevels; ++level) {
    offsets += static_cast<char>(bomb.size() >> 8U);
    offsets += static_cast<char>(bomb.size() & 0xFFU);
    bomb += "\xAF\x10\x10";
    bomb += std::string(16, static_cast<char>(std::min(level + 1, kLevels)));
  }
  offsets += static_cast<char>(bomb.size() >> 8U);
  offsets += static_cast<char>(bomb.size() & 0xFFU);
  bomb += '\x09';
  const auto table = bomb.size();
  bomb += offsets + std::string(6, '\0') + "\x02\x01" + std::string(7, '\0') +
          static_cast<char>(kLevels + 1) + std::string(8, '\0') + std::string(6, '\0') +
          static_cast<char>(table >> 8U) + static_cast<char>(table & 0xFFU);
  EXPECT_EQ(parsePropertyListNode(bomb), nullptr);
}

TEST(PropertyListTest, ReadsAsNothingAKeyWithAZeroInIt) {
  std::string binary = binaryPropertyList(nodeOfValue(Dictionary{{"Key", "value"}}).get());
  ASSERT_NE(parsePropertyListNode(binary), nullptr);
  binary[binary.find("Key") + 1] = '\0';
  EXPECT_EQ(parsePropertyListNode(binary), nullptr);
}

TEST(PropertyListTest, SurvivesEveryChangedByteOfABinaryList) {
  const Dictionary contents = someOfEverything();
  const std::string whole = binaryPropertyList(nodeOfValue(contents).get());
  ASSERT_EQ(valueOfNode(parsePropertyListNode(whole).get()), Value(contents));
  for (std::size_t index = 0; index < whole.size(); ++index) {
    readAll(whole.substr(0, index));
    for (int byte = 0; byte < 256; ++byte) {
      std::string changed = whole;
      changed[index] = static_cast<char>(byte);
      readAll(changed);
    }
  }
}

TEST(PropertyListTest, SurvivesRandomChangesOfBinaryAndXmlLists) {
  const std::string binary = binaryPropertyList(nodeOfValue(someOfEverything()).get());
  const std::string xml =
      "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict><key>a&#0;b</key><integer>5</integer>"
      "<key>When</key><date>2001-01-01T00:00:10Z</date><key>List</key><array><true/>"
      "<string>a &amp; b</string><data>AAEC</data><real>1e3</real></array></dict></plist>";
  std::mt19937 random(20011);
  for (int round = 0; round < 20000; ++round) {
    for (std::string bytes : {binary, xml}) {
      for (unsigned changes = 1 + random() % 4; changes > 0; --changes) {
        bytes[random() % bytes.size()] = static_cast<char>(random());
      }
      readAll(bytes);
    }
  }
}

}  // namespace
}  // namespace vornix
