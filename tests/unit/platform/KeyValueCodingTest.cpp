#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/base/NSDictionary.h"
#include "platform/base/NSNull.h"
#include "tests/support/Record.h"
#include "tests/support/ScopedDiagnostics.h"

namespace vornix {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;
using tests::described;
using tests::number;
using tests::Record;
using tests::text;

std::string bytes(std::string_view literal) {
  return std::string(literal);
}

class KeyValueCoding : public testing::Test {
 protected:
  tests::ScopedDiagnostics diagnostics_;
  std::shared_ptr<Record> street_ =
      Record::create({{"name", text("Long Lane")}, {"sign", nullptr}});
  std::shared_ptr<NSDictionary> papers_ = std::make_shared<NSDictionary>(
      std::initializer_list<NSDictionary::Entry>{{"id", number(7)}, {"street", street_}});
  std::shared_ptr<Record> person_ = Record::create({{"name", text("Ada")},
                                                    {"age", number(36)},
                                                    {"street", street_},
                                                    {"papers", papers_},
                                                    {"nobody", nullptr},
                                                    {"none", NSNull::null()},
                                                    {"Stra\xC3\x9F"
                                                     "e",
                                                     text("sharp")},
                                                    {"e\xCC\x81", text("combining")},
                                                    {"\xED\x95\x9C", text("Hangul")},
                                                    {"\xF0\x9F\x98\x80", text("pair")},
                                                    {bytes({"a\0b", 3}), text("zero")},
                                                    {"\xD7\x90", text("right to left")},
                                                    {"\xEF\xBB\xBF", text("mark")}});
};

struct PathCase {
  std::string_view keyPath;
  std::string_view value;
  // The last words of what is reported; empty for nothing.
  std::string_view complaint = "";
};

TEST_F(KeyValueCoding, ReadsEachKeyOfAPathFromTheObjectBefore) {
  const std::vector<PathCase> cases{
      {"name", "Ada"},
      {"age", "36"},
      {"street.name", "Long Lane"},
      {"papers.id", "7"},
      {"papers.street.name", "Long Lane"},
      {"papers.nothing", "(null)"},
      {"papers.nothing.more", "(null)"},
      {"nobody", "(null)"},
      {"nobody.name", "(null)"},
      {"street.sign", "(null)"},
      {"street.sign.colour.depth", "(null)"},
      {"none", "<null>"},
      {"none.name", "(null)", "for the key \"name\""},
      {"Stra\xC3\x9F"
       "e",
       "sharp"},
      {"strasse", "(null)", "for the key \"strasse\""},
      {"e\xCC\x81", "combining"},
      {"\xC3\xA9", "(null)", "for the key \"\xC3\xA9\""},
      {"\xED\x95\x9C", "Hangul"},
      {"\xF0\x9F\x98\x80", "pair"},
      {{"a\0b", 3}, "zero"},
      {"a", "(null)", "for the key \"a\""},
      {"\xD7\x90", "right to left"},
      {"\xEF\xBB\xBF", "mark"},
      {"\xED\xA0\x80", "(null)", "for the key \"\xED\xA0\x80\""},
      {"\xFF", "(null)", "for the key \"\xFF\""},
      {"", "(null)", "for the key \"\""},
      {".", "(null)", "for the key \"\""},
      {"..", "(null)", "for the key \"\""},
      {".name", "(null)", "for the key \"\""},
      {"name.", "(null)", "for the key \"\""},
      {"street..name", "(null)", "for the key \"\""},
      {"unknown.name", "(null)", "for the key \"unknown\""},
      {"age.name", "(null)", "for the key \"name\""},
      {" name", "(null)", "for the key \" name\""},
  };
  for (const auto& [keyPath, value, complaint] : cases) {
    const tests::ScopedDiagnostics diagnostics;
    EXPECT_EQ(described(person_->valueForKeyPath(keyPath)), value) << keyPath;
    if (complaint.empty()) {
      EXPECT_THAT(diagnostics.lines(), IsEmpty()) << keyPath;
    } else {
      EXPECT_THAT(diagnostics.lines(), ElementsAre(EndsWith(complaint))) << keyPath;
    }
  }
}

struct SetCase {
  std::string_view keyPath;
  // Where the value is found afterwards; empty for nowhere.
  std::string_view found;
  int complaints = 0;
};

TEST_F(KeyValueCoding, SetsTheLastKeyOfAPathOnTheObjectBefore) {
  const std::vector<SetCase> cases{
      {"name", "name"},
      {"age", "age"},
      {"nobody", "nobody"},
      {"none", "none"},
      {"street.name", "papers.street.name"},
      {"papers.street.sign", "street.sign"},
      {"papers.id", "", 1},
      {"papers", "papers"},
      {"unknown", "", 1},
      {"nobody.name.more", "", 1},
      {"", "", 1},
      {".", "", 1},
      {"street.", "", 1},
      {".name", "", 1},
      {"unknown.name", "", 1},
      {"Stra\xC3\x9F"
       "e",
       "Stra\xC3\x9F"
       "e"},
      {"STRASSE", "", 1},
      {"e\xCC\x81", "e\xCC\x81"},
      {"\xF0\x9F\x98\x80", "\xF0\x9F\x98\x80"},
      {{"a\0b", 3}, {"a\0b", 3}},
      {"\xED\xA0\x80", "", 1},
  };
  for (const auto& [keyPath, found, complaints] : cases) {
    const tests::ScopedDiagnostics diagnostics;
    const auto value = text("new");
    const int before = person_->changes() + street_->changes();
    person_->setValueForKeyPath(value, keyPath);
    EXPECT_EQ(person_->changes() + street_->changes() - before, found.empty() ? 0 : 1) << keyPath;
    EXPECT_EQ(diagnostics.lines().size(), static_cast<std::size_t>(complaints)) << keyPath;
    if (!found.empty()) {
      EXPECT_EQ(person_->valueForKeyPath(found), value) << keyPath;
    }
  }
}

TEST_F(KeyValueCoding, AMissingObjectOnTheWaySwallowsTheValue) {
  person_->setValueForKeyPath(text("new"), "nobody.name");
  person_->setValueForKeyPath(text("new"), "street.sign.colour.depth");
  EXPECT_THAT(diagnostics_.lines(), IsEmpty());
  EXPECT_EQ(person_->changes() + street_->changes(), 0);
}

TEST_F(KeyValueCoding, SetsNothingWhereTheValueIsMissing) {
  person_->setValueForKeyPath(nullptr, "street.name");
  EXPECT_EQ(street_->valueForKey("name"), nullptr);
  EXPECT_EQ(street_->changes(), 1);
}

TEST_F(KeyValueCoding, AnUnknownKeyIsReportedWithTheObject) {
  NSObject plain;
  EXPECT_EQ(plain.valueForKey("name"), nullptr);
  plain.setValueForKey(text("Ada"), "name");
  EXPECT_THAT(diagnostics_.lines(),
              ElementsAre(plain.description() + " has no value for the key \"name\"",
                          plain.description() + " takes no value for the key \"name\""));
}

TEST_F(KeyValueCoding, ALongPathIsWalkedToItsEnd) {
  constexpr int kDepth = 20000;
  auto inner = Record::create({{"next", text("end")}});
  std::string path = "next";
  std::vector<std::shared_ptr<Record>> chain{inner};
  for (int depth = 0; depth < kDepth; ++depth) {
    chain.push_back(Record::create({{"next", chain.back()}}));
    path += ".next";
  }
  EXPECT_EQ(described(chain.back()->valueForKeyPath(path)), "end");
  chain.back()->setValueForKeyPath(text("new end"), path);
  EXPECT_EQ(described(inner->valueForKey("next")), "new end");
  // Taken apart from the outside, so that no destructor descends through all of it.
  while (!chain.empty()) {
    chain.back()->setValueForKey(nullptr, "next");
    chain.pop_back();
  }
}

}  // namespace
}  // namespace vornix
