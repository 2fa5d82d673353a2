#include "fs/FileNameSearch.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "foundation/NSString+NSStringAdditions.h"
#include "foundation/ResourceNameComparison.h"
#include "platform/base/PathText.h"
#include "platform/text/CanonicalSearch.h"
#include "platform/text/CaseMapping.h"
#include "tests/support/RandomInput.h"

namespace vornix {
namespace {

using Answer = FileNameSearch::Answer;

// The rule as it stands, without any short cut.
bool matchesPlainly(std::string_view name, bool byWords, std::string_view itemName,
                    std::string_view candidate) {
  const std::string searched = text::lowercase(name);
  if (holdsNumberedCopyGenerally(candidate, searched)) return false;
  return byWords ? compareApplicationResourceNameByWords(searched, candidate, " ") == 0
                 : text::containsCanonically(text::lowercase(itemName), searched);
}

std::string candidateOf(std::string_view itemName, bool isFolder) {
  const std::string path = "/some/folder/" + std::string(itemName);
  return text::lastPathComponent(
      text::lowercase(isFolder ? path : text::deletingPathExtension(path)));
}

void expectPlainAnswer(const std::string& name, bool byWords, const std::string& item) {
  const FileNameSearch search(name, byWords);
  const bool asFile = matchesPlainly(name, byWords, item, candidateOf(item, false));
  const bool asFolder = matchesPlainly(name, byWords, item, candidateOf(item, true));
  const std::string what = "\"" + name + "\" in \"" + item + "\"";
  EXPECT_EQ(search.matches(item, candidateOf(item, false)), asFile) << what;
  EXPECT_EQ(search.matches(item, candidateOf(item, true)), asFolder) << what;
  const Answer answer = search.matches(item);
  EXPECT_EQ(answer == Answer::dependsOnCandidate, asFile != asFolder) << what;
  if (asFile == asFolder) {
    EXPECT_EQ(answer, asFile ? Answer::yes : Answer::no) << what;
  }
}

TEST(FileNameSearchTest, AnswersAsThePlainRuleForRandomNames) {
  // Few pieces, so that they meet often.
  const std::string pieces[] = {"a",      "B",      "b",      " ",       " ",      ".",
                                "2",      "app",    "App",    ".app",    "(",      "+",
                                "\u212a", "k",      "K",      "\u0130",  "i",      "\xFF",
                                "\u03a3", "\u03c3", "\u03c2", "e\u0301", "\u00e9", "\u00df"};
  tests::RandomInput random(31);
  const auto text = [&](std::size_t most) {
    std::string result;
    for (std::size_t left = random.upTo(most - 1) + 1; left > 0; --left)
      result += pieces[random.upTo(std::size(pieces) - 1)];
    return result;
  };
  for (int round = 0; round < 4000; ++round) expectPlainAnswer(text(3), round % 2 == 0, text(6));
}

TEST(FileNameSearchTest, AsksForTheKindOnlyWhereTheExtensionMatters) {
  struct Row {
    const char* name;
    bool byWords;
    const char* item;
    Answer answer;
  };
  constexpr Row rows[] = {
      {"disk utility", true, "Disk Utility", Answer::yes},
      {"disk utility", true, "other.app", Answer::no},
      {"disk utility", true, "Disk Utility.app", Answer::dependsOnCandidate},
      {"disk utility", true, "Disk Utility 2", Answer::no},
      {"disk utility", true, "Disk Utility 2.app", Answer::no},
      {"disk", true, "Disk a.b", Answer::yes},
      {"app", false, "App.plist", Answer::yes},
      {"app", false, "other.plist", Answer::no},
      {"app", false, "other.app", Answer::yes},
      // A file's candidate has lost the number.
      {"app", false, "x.app2", Answer::dependsOnCandidate},
  };
  for (const Row& row : rows)
    EXPECT_EQ(FileNameSearch(row.name, row.byWords).matches(row.item), row.answer) << row.item;
}

TEST(FileNameSearchTest, StandsLongNames) {
  const std::string item = std::string(5000, 'x') + " Target";
  EXPECT_EQ(FileNameSearch("target", false).matches(item), Answer::yes);
  EXPECT_EQ(FileNameSearch(std::string(5000, 'X'), true).matches(item), Answer::yes);
  EXPECT_EQ(FileNameSearch("other", true).matches(item), Answer::no);
  EXPECT_EQ(FileNameSearch(" ", true).matches("a  b"), Answer::yes);
  EXPECT_EQ(FileNameSearch(" ", true).matches("a b"), Answer::no);
}

}  // namespace
}  // namespace vornix
