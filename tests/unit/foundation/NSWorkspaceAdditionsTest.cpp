#include "foundation/NSWorkspace+Additions.h"

#include <gtest/gtest.h>

#include "tests/fakes/FakePreferencesStore.h"

namespace vornix {
namespace {

class NSWorkspaceAdditions : public testing::Test {
 protected:
  void prefer(const Value& languages) {
    store_.setValue("AppleLanguages", languages, "com.example.program");
  }

  fakes::FakePreferencesStore store_;
  NSNotificationCenter center_;
  NSUserDefaults defaults_{"com.example.program", store_, center_};
  NSWorkspace& workspace_ = NSWorkspace::sharedWorkspace();
};

TEST_F(NSWorkspaceAdditions, AnswersThePreferredLanguagesInThreeForms) {
  prefer(Array{"de-DE", "en", "fr"});
  EXPECT_EQ(preferredLanguages(workspace_, defaults_), "de-DE,en,fr");
  EXPECT_EQ(preferredLanguageCode(workspace_, defaults_), "de-DE");
  EXPECT_EQ(preferredLanguage(workspace_, defaults_), "de");
}

TEST_F(NSWorkspaceAdditions, FallsBackToEnglishCodesButAnEmptyListWithoutPreferences) {
  EXPECT_EQ(preferredLanguages(workspace_, defaults_), "");
  EXPECT_EQ(preferredLanguageCode(workspace_, defaults_), "en");
  EXPECT_EQ(preferredLanguage(workspace_, defaults_), "en");
}

TEST_F(NSWorkspaceAdditions, JoinsAtMostThreeLanguagesWithoutATrailingComma) {
  prefer(Array{"de", "en", "fr", "it", "es"});
  EXPECT_EQ(preferredLanguages(workspace_, defaults_), "de,en,fr");
  prefer(Array{"de", "en"});
  EXPECT_EQ(preferredLanguages(workspace_, defaults_), "de,en");
}

TEST_F(NSWorkspaceAdditions, CutsALanguageAtTheFirstHyphenOnly) {
  prefer(Array{"zh-Hans-CN"});
  EXPECT_EQ(preferredLanguage(workspace_, defaults_), "zh");
  prefer(Array{"pt_BR"});
  EXPECT_EQ(preferredLanguage(workspace_, defaults_), "pt_BR");
}

TEST_F(NSWorkspaceAdditions, TreatsAValueThatIsNoListAsAbsent) {
  for (const Value& odd : {Value("de"), Value(7), Value(Array{}), Value(Dictionary{})}) {
    prefer(odd);
    EXPECT_EQ(preferredLanguages(workspace_, defaults_), "");
    EXPECT_EQ(preferredLanguageCode(workspace_, defaults_), "en");
  }
}

}  // namespace
}  // namespace vornix
