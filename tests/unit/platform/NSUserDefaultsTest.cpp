#include "platform/preferences/NSUserDefaults.h"

#include <gtest/gtest.h>

#include <thread>

#include "platform/base/Diagnostics.h"
#include "platform/preferences/CFPreferences.h"
#include "tests/fakes/FakePreferencesStore.h"
#include "tests/fakes/FakeProcessInfo.h"
#include "tests/fakes/FakeResourceFiles.h"

namespace vornix {
namespace {

constexpr std::string_view kOwn = "com.example.own";
constexpr std::string_view kSuite = "com.example.suite";
constexpr std::string_view kGlobal = ".GlobalPreferences";

class NSUserDefaultsTest : public testing::Test {
 protected:
  void set(std::string_view domain, const Value& value) {
    static_cast<void>(store_.setValue("Key", value, domain));
  }
  void TearDown() override { setDiagnosticReceiver({}); }

  fakes::FakePreferencesStore store_;
  NSNotificationCenter center_;
  std::shared_ptr<NSUserDefaults> defaults_ =
      std::make_shared<NSUserDefaults>(std::string(kOwn), store_, center_);
};

TEST_F(NSUserDefaultsTest, SearchesFromArgumentsDownToRegisteredDefaults) {
  defaults_->addSuiteNamed(kSuite);
  EXPECT_EQ(defaults_->objectForKey("Key"), std::nullopt);
  defaults_->registerDefaults({{"Key", "registered"}});
  EXPECT_EQ(defaults_->objectForKey("Key"), Value("registered"));
  store_.setAnyUserValue("Key", "any global", kGlobal);
  EXPECT_EQ(defaults_->objectForKey("Key"), Value("any global"));
  store_.setAnyUserValue("Key", "any suite", kSuite);
  EXPECT_EQ(defaults_->objectForKey("Key"), Value("any suite"));
  store_.setAnyUserValue("Key", "any own", kOwn);
  EXPECT_EQ(defaults_->objectForKey("Key"), Value("any own"));
  set(kGlobal, "global");
  EXPECT_EQ(defaults_->objectForKey("Key"), Value("global"));
  set(kSuite, "suite");
  EXPECT_EQ(defaults_->objectForKey("Key"), Value("suite"));
  set(kOwn, "own");
  EXPECT_EQ(defaults_->objectForKey("Key"), Value("own"));
  defaults_->setArguments({"program", "-Key", "argument"});
  EXPECT_EQ(defaults_->objectForKey("Key"), Value("argument"));
}

TEST_F(NSUserDefaultsTest, ReadsTheMostRecentlyAddedSuiteFirst) {
  set("com.example.a", "A");
  set("com.example.b", "B");
  defaults_->addSuiteNamed("com.example.a");
  defaults_->addSuiteNamed("com.example.b");
  EXPECT_EQ(defaults_->stringForKey("Key"), "B");
  defaults_->addSuiteNamed("com.example.a");
  EXPECT_EQ(defaults_->stringForKey("Key"), "A");
}

TEST_F(NSUserDefaultsTest, IgnoresASuiteWithItsOwnName) {
  defaults_->addSuiteNamed(kSuite);
  defaults_->addSuiteNamed(kOwn);
  set(kSuite, "suite");
  EXPECT_EQ(defaults_->stringForKey("Key"), "suite");
}

TEST_F(NSUserDefaultsTest, WritesToItsOwnDomainNeverToASuite) {
  defaults_->addSuiteNamed(kSuite);
  set(kSuite, 1);
  defaults_->setObject(2, "Key");
  EXPECT_EQ(store_.contents(kOwn), (Dictionary{{"Key", 2}}));
  EXPECT_EQ(store_.contents(kSuite), (Dictionary{{"Key", 1}}));
}

TEST_F(NSUserDefaultsTest, LetsLowerValuesShineThroughAfterARemoval) {
  defaults_->addSuiteNamed(kSuite);
  defaults_->registerDefaults({{"Key", "registered"}});
  set(kSuite, "suite");
  set(kOwn, "own");
  defaults_->removeObjectForKey("Key");
  EXPECT_EQ(defaults_->stringForKey("Key"), "suite");
  EXPECT_EQ(defaults_->ownObjectForKey("Key"), std::nullopt);
  static_cast<void>(store_.setValue("Key", std::nullopt, kSuite));
  EXPECT_EQ(defaults_->stringForKey("Key"), "registered");
}

TEST_F(NSUserDefaultsTest, RegisteredDefaultsAddUpAndAreNeverWritten) {
  defaults_->registerDefaults({{"Key", 1}, {"Other", 1}});
  defaults_->registerDefaults({{"Key", 2}});
  EXPECT_EQ(defaults_->integerForKey("Key"), 2);
  EXPECT_EQ(defaults_->integerForKey("Other"), 1);
  EXPECT_EQ(store_.writes(), 0);
}

TEST_F(NSUserDefaultsTest, ConvertsValuesAsThePlatformDoes) {
  struct Case {
    Value value;
    bool boolean;
    std::int64_t integer;
  };
  const Case cases[] = {{true, true, 1},      {0, false, 0},           {0.5, true, 0},
                        {-3.9, true, -3},     {"YES", true, 0},        {"12x", true, 12},
                        {"no", false, 0},     {"", false, 0},          {Date{5}, false, 0},
                        {Array{1}, false, 0}, {Dictionary{}, false, 0}};
  for (const Case& example : cases) {
    defaults_->setObject(example.value, "Key");
    EXPECT_EQ(defaults_->boolForKey("Key"), example.boolean) << example.value.description();
    EXPECT_EQ(defaults_->integerForKey("Key"), example.integer) << example.value.description();
  }
  EXPECT_FALSE(defaults_->boolForKey("Missing"));
  EXPECT_EQ(defaults_->integerForKey("Missing"), 0);
}

TEST_F(NSUserDefaultsTest, AnswersTextsOnlyForTexts) {
  defaults_->setObject("text", "Key");
  EXPECT_EQ(defaults_->stringForKey("Key"), "text");
  defaults_->setObject(5, "Key");
  EXPECT_EQ(defaults_->stringForKey("Key"), std::nullopt);
}

TEST_F(NSUserDefaultsTest, PostsAChangeOnTheCallingThreadAfterEverySetAndRemoval) {
  std::vector<std::string> seen;
  const auto thread = std::this_thread::get_id();
  const auto token = center_.addObserver(NSUserDefaultsDidChangeNotification,
                                         [&](const NSNotification& notification) {
                                           EXPECT_EQ(notification.object, defaults_);
                                           EXPECT_EQ(std::this_thread::get_id(), thread);
                                           const auto value = defaults_->objectForKey("Key");
                                           seen.push_back(value ? value->description() : "none");
                                         });
  defaults_->setObject("one", "Key");
  defaults_->setObject("one", "Key");
  defaults_->removeObjectForKey("Key");
  EXPECT_EQ(seen, (std::vector<std::string>{"one", "one", "none"}));
}

TEST_F(NSUserDefaultsTest, RefusesNullObjectsWithADiagnostic) {
  std::vector<std::string> lines;
  setDiagnosticReceiver([&](std::string_view line) { lines.emplace_back(line); });
  defaults_->setObject(Value(Null()), "Key");
  defaults_->setObject(Value(Array{Dictionary{{"Inner", Null()}}}), "Key");
  EXPECT_EQ(store_.writes(), 0);
  EXPECT_EQ(lines.size(), 2U);
}

TEST_F(NSUserDefaultsTest, ReportsAWriteThatFailsAndStillReadsTheValue) {
  std::vector<std::string> lines;
  setDiagnosticReceiver([&](std::string_view line) { lines.emplace_back(line); });
  store_.failWrites(true);
  defaults_->setObject(5, "Key");
  EXPECT_EQ(lines, std::vector{posixError(28, kOwn).localizedDescription});
  EXPECT_EQ(defaults_->integerForKey("Key"), 5);
  EXPECT_FALSE(defaults_->synchronize());
}

TEST_F(NSUserDefaultsTest, SynchronizesItsOwnDomain) {
  EXPECT_TRUE(defaults_->synchronize());
  EXPECT_EQ(store_.synchronized(), std::vector<std::string>{std::string(kOwn)});
}

TEST_F(NSUserDefaultsTest, ReadsArgumentsAsPropertyLists) {
  defaults_->setArguments({"program", "-Word", "plain", "-List", "(a, \"b c\")", "-Negative", "-5",
                           "-NoValue", "-Last", "free text (really", "stray", "-Dangling"});
  EXPECT_EQ(defaults_->objectForKey("Word"), Value("plain"));
  EXPECT_EQ(defaults_->objectForKey("List"), Value(Array{"a", "b c"}));
  EXPECT_EQ(defaults_->integerForKey("Negative"), -5);
  EXPECT_EQ(defaults_->objectForKey("NoValue"), std::nullopt);
  EXPECT_EQ(defaults_->objectForKey("Last"), Value("free text (really"));
  EXPECT_EQ(defaults_->objectForKey("Dangling"), std::nullopt);
}

TEST_F(NSUserDefaultsTest, TakesLanguagesFromTheLocaleOnlyWhereNoFileSetsThem) {
  EXPECT_EQ(defaults_->objectForKey("AppleLanguages"), std::nullopt);
  fakes::processInfo().languages = {"de-DE", "en"};
  EXPECT_EQ(defaults_->objectForKey("AppleLanguages"), Value(Array{"de-DE", "en"}));
  static_cast<void>(store_.setValue("AppleLanguages", Array{"fr"}, kGlobal));
  EXPECT_EQ(defaults_->objectForKey("AppleLanguages"), Value(Array{"fr"}));
  fakes::processInfo().languages.clear();
}

TEST_F(NSUserDefaultsTest, KeepsTheSettingsOfAProgramWithoutIdentifierInMemory) {
  NSUserDefaults nameless("", store_, center_);
  nameless.setObject(1, "Key");
  EXPECT_EQ(nameless.integerForKey("Key"), 1);
  EXPECT_EQ(nameless.ownObjectForKey("Key"), Value(1));
  nameless.removeObjectForKey("Key");
  EXPECT_EQ(nameless.objectForKey("Key"), std::nullopt);
  EXPECT_TRUE(nameless.synchronize());
  EXPECT_EQ(store_.writes(), 0);
}

TEST(StandardUserDefaultsTest, UsesTheMainBundlesIdentifier) {
  const auto defaults = NSUserDefaults::standardUserDefaults();
  defaults->setObject("value", "Key");
  EXPECT_EQ(fakes::processPreferences().contents("com.example.program"),
            (Dictionary{{"Key", "value"}}));
  EXPECT_EQ(NSUserDefaults::standardUserDefaults(), defaults);
}

TEST(StandardUserDefaultsTest, MayBeAskedForByWhoeverIsToldThatTheMainBundleIsBroken) {
  fakes::resourceFiles().setFile("/opt/vornix/share/program/Info.plist", "garbage");
  int told = 0;
  setDiagnosticReceiver([&](std::string_view) {
    ++told;
    EXPECT_NE(NSUserDefaults::standardUserDefaults(), nullptr);
  });
  EXPECT_NE(NSUserDefaults::standardUserDefaults(), nullptr);
  setDiagnosticReceiver({});
  EXPECT_EQ(told, 1);
}

TEST(CFPreferencesTest, CopiesAValueFromExactlyOneDomain) {
  fakes::FakePreferencesStore store;
  CFPreferencesSetValue(store, "Key", Value(1), kGlobal);
  EXPECT_EQ(CFPreferencesCopyValue(store, "Key", kOwn), std::nullopt);
  CFPreferencesSetValue(store, "Key", Value(2), kOwn);
  EXPECT_EQ(CFPreferencesCopyValue(store, "Key", kOwn), Value(2));
  CFPreferencesSetValue(store, "Key", std::nullopt, kOwn);
  EXPECT_EQ(CFPreferencesCopyValue(store, "Key", kOwn), std::nullopt);
}

TEST(CFPreferencesTest, CopiesAnApplicationsValueFromItsWholeSearchList) {
  fakes::FakePreferencesStore store;
  store.setAnyUserValue("Key", 4, kGlobal);
  EXPECT_EQ(CFPreferencesCopyAppValue(store, "Key", kOwn), Value(4));
  store.setAnyUserValue("Key", 3, kOwn);
  EXPECT_EQ(CFPreferencesCopyAppValue(store, "Key", kOwn), Value(3));
  CFPreferencesSetValue(store, "Key", Value(2), kGlobal);
  EXPECT_EQ(CFPreferencesCopyAppValue(store, "Key", kOwn), Value(2));
  CFPreferencesSetValue(store, "Key", Value(1), kOwn);
  EXPECT_EQ(CFPreferencesCopyAppValue(store, "Key", kOwn), Value(1));
}

TEST(CFPreferencesTest, SynchronizesTheDomainAndSaysWhetherItWorked) {
  fakes::FakePreferencesStore store;
  EXPECT_TRUE(CFPreferencesSynchronize(store, kOwn));
  store.failWrites(true);
  EXPECT_FALSE(CFPreferencesSynchronize(store, kOwn));
  EXPECT_EQ(store.synchronized().front(), kOwn);
}

TEST(CFPreferencesTest, RefusesANullObject) {
  fakes::FakePreferencesStore store;
  setDiagnosticReceiver([](std::string_view) {});
  CFPreferencesSetValue(store, "Key", Value(Null()), kOwn);
  setDiagnosticReceiver({});
  EXPECT_EQ(store.writes(), 0);
}

}  // namespace
}  // namespace vornix
