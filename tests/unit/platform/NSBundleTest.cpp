#include "platform/system/NSBundle.h"

#include <gtest/gtest.h>

#include "platform/base/Diagnostics.h"
#include "tests/fakes/FakePreferencesStore.h"
#include "tests/fakes/FakeProcessInfo.h"
#include "tests/fakes/FakeResourceFiles.h"

namespace vornix {
namespace {

class NSBundleTest : public testing::Test {
 protected:
  NSBundleTest() {
    offer("en", "\"Launch\" = \"Launch it\"; \"Bye\" = \"Bye\";");
    offer("de", "\"Launch\" = \"Starten\";");
  }
  void offer(std::string_view language, std::string_view strings) {
    files_.setFile("/b/" + std::string(language) + ".lproj/Localizable.strings", strings);
  }
  NSBundle bundle(std::vector<std::string> languages) {
    return {"/b", std::move(languages), std::nullopt, files_};
  }
  std::string launchFor(std::vector<std::string> languages) {
    return bundle(std::move(languages)).localizedStringForKey("Launch", "", "");
  }

  fakes::FakeResourceFiles files_;
};

TEST_F(NSBundleTest, ChoosesTheFirstPreferredLanguageThatIsOffered) {
  EXPECT_EQ(launchFor({"fr", "de", "en"}), "Starten");
  EXPECT_EQ(launchFor({"en", "de"}), "Launch it");
}

TEST_F(NSBundleTest, PrefersTheExactRegionThenTheLanguageAlone) {
  EXPECT_EQ(launchFor({"de-AT", "en"}), "Starten");
  offer("de_AT", "\"Launch\" = \"Anwerfen\";");
  EXPECT_EQ(launchFor({"de-AT", "en"}), "Anwerfen");
  EXPECT_EQ(launchFor({"de-Latn-CH"}), "Starten");
}

TEST_F(NSBundleTest, FallsBackToTheDevelopmentRegionThenToTheFirstFound) {
  EXPECT_EQ(launchFor({"fr"}), "Starten");
  files_.setPropertyList("/b/Info.plist", Dictionary{{"CFBundleDevelopmentRegion", "en"}});
  EXPECT_EQ(launchFor({"fr"}), "Launch it");
  EXPECT_EQ(launchFor({}), "Launch it");
}

TEST_F(NSBundleTest, AnswersTheKeyOrTheGivenTextForAMissingKey) {
  const NSBundle german = bundle({"de"});
  EXPECT_EQ(german.localizedStringForKey("Bye", "", ""), "Bye");
  EXPECT_EQ(german.localizedStringForKey("Nothing", "Else", ""), "Else");
  EXPECT_EQ(german.localizedStringForKey("Launch", "", "NoSuchTable"), "Launch");
}

TEST_F(NSBundleTest, FallsBackToTheUnlocalisedAndTheBaseTable) {
  files_.setFile("/b/Base.lproj/Other.strings", "\"k\" = \"base\";");
  EXPECT_EQ(bundle({"de"}).localizedStringForKey("k", "", "Other"), "base");
  files_.setFile("/b/Other.strings", "\"k\" = \"unlocalised\";");
  EXPECT_EQ(bundle({"de"}).localizedStringForKey("k", "", "Other"), "unlocalised");
}

TEST_F(NSBundleTest, NeverChoosesTheBaseFolderAsALanguage) {
  fakes::FakeResourceFiles files;
  files.setFile("/b/Base.lproj/Localizable.strings", "\"k\" = \"base\";");
  files.setFile("/b/sv.lproj/Localizable.strings", "\"k\" = \"svenska\";");
  EXPECT_EQ(NSBundle("/b", {"fr"}, std::nullopt, files).localizedStringForKey("k", "", ""),
            "svenska");
}

TEST_F(NSBundleTest, ReadsCompiledTables) {
  files_.setPropertyList("/b/fr.lproj/Localizable.strings",
                         Dictionary{{"Launch", "Lancer"}, {"Number", 5}});
  EXPECT_EQ(launchFor({"fr"}), "Lancer");
  EXPECT_EQ(bundle({"fr"}).localizedStringForKey("Number", "", ""), "Number");
}

TEST_F(NSBundleTest, ReadsNothingBeforeItIsAskedAndEachFileOnce) {
  const NSBundle german = bundle({"de"});
  EXPECT_EQ(german.bundlePath(), "/b");
  EXPECT_EQ(files_.reads(), 0);
  static_cast<void>(german.localizedStringForKey("Launch", "", ""));
  const int reads = files_.reads();
  static_cast<void>(german.localizedStringForKey("Bye", "", ""));
  EXPECT_EQ(files_.reads(), reads);
}

TEST_F(NSBundleTest, AnswersInformationAndIdentifier) {
  EXPECT_EQ(bundle({}).bundleIdentifier(), std::nullopt);
  files_.setPropertyList("/b/Info.plist",
                         Dictionary{{"CFBundleIdentifier", "com.example.b"}, {"Number", 5}});
  EXPECT_EQ(bundle({}).bundleIdentifier(), "com.example.b");
  EXPECT_EQ(bundle({}).objectForInfoDictionaryKey("Number"), Value(5));
  EXPECT_EQ(bundle({}).objectForInfoDictionaryKey("Missing"), std::nullopt);
  const NSBundle given("/b", {}, Dictionary{{"CFBundleIdentifier", "given"}}, files_);
  EXPECT_EQ(given.bundleIdentifier(), "given");
}

TEST_F(NSBundleTest, ReportsAnInformationFileThatIsNoPropertyListAndTreatsItAsEmpty) {
  std::vector<std::string> lines;
  setDiagnosticReceiver([&](std::string_view line) { lines.emplace_back(line); });
  files_.setFile("/b/Info.plist", "garbage");
  const NSBundle broken = bundle({});
  EXPECT_EQ(broken.bundleIdentifier(), std::nullopt);
  EXPECT_EQ(broken.bundleIdentifier(), std::nullopt);
  setDiagnosticReceiver({});
  EXPECT_EQ(lines.size(), 1U);
}

TEST_F(NSBundleTest, MayBeAskedByWhoeverIsToldThatItsInformationIsBroken) {
  files_.setFile("/b/Info.plist", "garbage");
  const NSBundle broken = bundle({});
  int told = 0;
  setDiagnosticReceiver([&](std::string_view) {
    ++told;
    EXPECT_EQ(broken.bundleIdentifier(), std::nullopt);
  });
  EXPECT_EQ(broken.bundleIdentifier(), std::nullopt);
  setDiagnosticReceiver({});
  EXPECT_EQ(told, 1);
}

TEST_F(NSBundleTest, AnswersPropertyListsAmongTheResources) {
  files_.setPropertyList("/b/Analytics.plist", Dictionary{{"CollectionHost", "host"}});
  EXPECT_EQ(bundle({}).propertyListNamed("Analytics.plist"),
            (Dictionary{{"CollectionHost", "host"}}));
  EXPECT_EQ(bundle({}).propertyListNamed("Missing.plist"), std::nullopt);
}

TEST(BundlePathTest, LiesInTheShareFolderOfTheExecutablesPrefix) {
  EXPECT_EQ(bundlePathOfExecutable("/usr/libexec/vornix/vornix-scheduler"),
            "/usr/share/vornix-scheduler");
  EXPECT_EQ(bundlePathOfExecutable("/opt/p/bin/vornixctl"), "/opt/p/share/vornixctl");
  EXPECT_EQ(bundlePathOfExecutable("/bin/tool"), "/share/tool");
  EXPECT_EQ(bundlePathOfExecutable("/build/agent/vornix-scheduler"), "/build/agent");
  EXPECT_EQ(bundlePathOfExecutable(""), "");
}

TEST(MainBundleTest, BelongsToTheRunningProgram) {
  EXPECT_EQ(NSBundle::mainBundle().bundlePath(), "/opt/vornix/share/program");
  EXPECT_EQ(NSBundle::mainBundle().bundleIdentifier(), "com.example.program");
}

TEST(MainBundleTest, SpeaksTheUsersLanguage) {
  fakes::processInfo().languages = {"de-DE"};
  fakes::resourceFiles().setFile("/opt/vornix/share/program/de.lproj/Localizable.strings",
                                 "\"Launch\" = \"Starten\";");
  EXPECT_EQ(NSBundle::mainBundle().localizedStringForKey("Launch", "", ""), "Starten");
}

TEST(PreferredLanguagesTest, ComeFromThePreferencesThenTheLocaleThenAreEnglish) {
  EXPECT_EQ(preferredLanguages(), std::vector<std::string>{"en"});
  fakes::processInfo().languages = {"de-DE", "fr"};
  EXPECT_EQ(preferredLanguages(), (std::vector<std::string>{"de-DE", "fr"}));
  static_cast<void>(fakes::processPreferences().setValue("AppleLanguages", Array{"it", 5, ""},
                                                         ".GlobalPreferences"));
  EXPECT_EQ(preferredLanguages(), std::vector<std::string>{"it"});
}

TEST(ApplicationInformationTest, IsWhatTheApplicationsBundleSays) {
  fakes::resourceFiles().setApplicationInfo("/apps/x.desktop", {{"CFBundleVersion", "3.4.0"}});
  EXPECT_EQ(NSBundle::infoDictionaryAtApplicationPath("/apps/x.desktop"),
            (Dictionary{{"CFBundleVersion", "3.4.0"}}));
  EXPECT_EQ(NSBundle::infoDictionaryAtApplicationPath("/apps/y.desktop"), std::nullopt);
}

}  // namespace
}  // namespace vornix
