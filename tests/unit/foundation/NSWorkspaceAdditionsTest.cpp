#include "foundation/NSWorkspace+Additions.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/preferences/CFPreferences.h"
#include "tests/fakes/FakeAccessibilityStatus.h"
#include "tests/fakes/FakePreferencesStore.h"

namespace vornix {
namespace {

constexpr std::string_view kAccessibility = "com.apple.universalaccess";

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

TEST_F(NSWorkspaceAdditions, AnswersWhateverTheListHolds) {
  struct Row {
    Array stored;
    std::string_view three;
    std::string_view code;
    std::string_view language;
  };
  const Row rows[] = {
      {{"en"}, "en", "en", "en"},
      {{"en-GB"}, "en-GB", "en-GB", "en"},
      {{"de", "en"}, "de,en", "de", "de"},
      {{"de-DE", "en", "fr", "it"}, "de-DE,en,fr", "de-DE", "de"},
      {{"zh-Hans-CN", "zh"}, "zh-Hans-CN,zh", "zh-Hans-CN", "zh"},
      {{"pt_BR"}, "pt_BR", "pt_BR", "pt_BR"},
      {{"pt_BR-x"}, "pt_BR-x", "pt_BR-x", "pt_BR"},
      {{"-"}, "-", "-", ""},
      {{"-de"}, "-de", "-de", ""},
      {{"de-"}, "de-", "de-", "de"},
      {{"de--DE"}, "de--DE", "de--DE", "de"},
      {{""}, "", "", ""},
      {{"", ""}, ",", "", ""},
      {{"", "en", ""}, ",en,", "", ""},
      {{"a,b", "c"}, "a,b,c", "a,b", "a,b"},
      {{" de - DE"}, " de - DE", " de - DE", " de "},
      {{"EN-us"}, "EN-us", "EN-us", "EN"},
      {{"\U0001F9C0-e\u0301"}, "\U0001F9C0-e\u0301", "\U0001F9C0-e\u0301", "\U0001F9C0"},
      {{"\u2010-\u200b\ufeff"}, "\u2010-\u200b\ufeff", "\u2010-\u200b\ufeff", "\u2010"},
      {{"\u05d0\u0130-\u00df", "\ud55c"},
       "\u05d0\u0130-\u00df,\ud55c",
       "\u05d0\u0130-\u00df",
       "\u05d0\u0130"},
      {{"\xFF-\xED\xA0\x80"}, "\xFF-\xED\xA0\x80", "\xFF-\xED\xA0\x80", "\xFF"},
      {{std::string("a\0b-c", 5)},
       std::string_view("a\0b-c", 5),
       std::string_view("a\0b-c", 5),
       std::string_view("a\0b", 3)},
      {{7, true}, "7,1", "7", "7"},
      {{-3}, "-3", "-3", ""}};
  for (const Row& row : rows) {
    prefer(row.stored);
    EXPECT_EQ(preferredLanguages(workspace_, defaults_), row.three);
    EXPECT_EQ(preferredLanguageCode(workspace_, defaults_), row.code);
    EXPECT_EQ(preferredLanguage(workspace_, defaults_), row.language);
  }
}

TEST_F(NSWorkspaceAdditions, TakesAHugeLanguage) {
  const std::string huge(10'000'000, 'x');
  prefer(Array{huge + "-y"});
  EXPECT_EQ(preferredLanguage(workspace_, defaults_), huge);
}

class VoiceOver : public testing::Test {
 protected:
  VoiceOver() {
    desktop_.screenReader = std::nullopt;
    desktop_.questions = 0;
  }
  void store(const Value& value) { store_.setValue("voiceOverOnOffKey", value, kAccessibility); }
  bool isOn() { return isVoiceOverOn(NSWorkspace::sharedWorkspace(), store_); }

  fakes::FakePreferencesStore store_;
  fakes::FakeAccessibilityStatus& desktop_ = fakes::accessibilityStatus();
};

TEST_F(VoiceOver, IsOffWhereNobodyTells) {
  EXPECT_FALSE(isOn());
}

TEST_F(VoiceOver, IsTheBooleanValueOfTheKey) {
  const std::pair<Value, bool> rows[] = {{true, true},      {false, false},
                                         {1, true},         {0, false},
                                         {-1, true},        {0.5, true},
                                         {0.0, false},      {"YES", true},
                                         {"NO", false},     {"true", true},
                                         {"1", true},       {"0", false},
                                         {"", false},       {"on", false},
                                         {Array{1}, false}, {Dictionary{{"a", 1}}, false},
                                         {Date{1}, false},  {Data{std::byte{1}}, false},
                                         {" 7", true},      {"\u200bYES", true}};
  for (const auto& [value, isTrue] : rows) {
    store(value);
    EXPECT_EQ(isOn(), isTrue) << value.description();
  }
}

TEST_F(VoiceOver, IsWhatTheDesktopTellsWhereNoFileSetsTheKey) {
  desktop_.screenReader = true;
  EXPECT_TRUE(isOn());
  desktop_.screenReader = false;
  EXPECT_FALSE(isOn());
}

TEST_F(VoiceOver, DoesNotAskTheDesktopWhereAFileSetsTheKey) {
  desktop_.screenReader = true;
  store(false);
  EXPECT_FALSE(isOn());
  EXPECT_EQ(desktop_.questions, 0);
}

TEST_F(VoiceOver, AlsoReadsTheGlobalDomainAndThoseForAnyUser) {
  store_.setAnyUserValue("voiceOverOnOffKey", true, kAccessibility);
  EXPECT_TRUE(isOn());
  store_.setValue("voiceOverOnOffKey", Value(false), ".GlobalPreferences");
  EXPECT_FALSE(isOn());
}

TEST_F(VoiceOver, IsTheOnlyPreferenceThatTheDesktopIsAskedFor) {
  desktop_.screenReader = true;
  EXPECT_EQ(CFPreferencesCopyAppValue(store_, "voiceOverOnOffKey", "com.example"), std::nullopt);
  EXPECT_EQ(CFPreferencesCopyAppValue(store_, "another", kAccessibility), std::nullopt);
  EXPECT_EQ(CFPreferencesCopyValue(store_, "voiceOverOnOffKey", kAccessibility), std::nullopt);
  EXPECT_EQ(desktop_.questions, 0);
}

}  // namespace
}  // namespace vornix
