#include "settings/VXDistributedPreferences.h"

#include <gtest/gtest.h>

#include <utility>

#include "settings/PreferenceKey.h"
#include "tests/fakes/FakePreferencesStore.h"

namespace vornix {
namespace {

constexpr std::string_view kShared = "com.orvane.Vornix3";
constexpr std::string_view kOwn = "com.example.own";

class VXDistributedPreferencesTest : public testing::Test {
 protected:
  VXDistributedPreferences preferences() { return VXDistributedPreferences(defaults_, store_); }
  void set(std::string_view domain, std::string_view key, const Value& value) {
    static_cast<void>(store_.setValue(key, value, domain));
  }

  fakes::FakePreferencesStore store_;
  NSNotificationCenter center_;
  std::shared_ptr<NSUserDefaults> defaults_ =
      std::make_shared<NSUserDefaults>(std::string(kOwn), store_, center_);
};

TEST_F(VXDistributedPreferencesTest, CopiesAKeyOfTheOwnPreferencesToTheSharedDomainOnFirstRead) {
  set(kOwn, "QB_SID", "session");
  auto shared = preferences();
  EXPECT_FALSE(store_.contents(kShared).contains("QB_SID"));
  EXPECT_EQ(shared.quillbaseSessionIdentifier(), "session");
  EXPECT_EQ(store_.contents(kShared), (Dictionary{{"QB_SID", "session"}}));
  EXPECT_EQ(store_.contents(kOwn), (Dictionary{{"QB_SID", "session"}}));
  EXPECT_EQ(store_.synchronized(), std::vector<std::string>{std::string(kShared)});
}

TEST_F(VXDistributedPreferencesTest, PrefersTheSharedValueToTheOwnOne) {
  set(kOwn, "ABTesterValues", "1A");
  set(kShared, "ABTesterValues", "1B");
  EXPECT_EQ(preferences().abTesterValues(), "1B");
  EXPECT_EQ(store_.contents(kShared), (Dictionary{{"ABTesterValues", "1B"}}));
}

TEST_F(VXDistributedPreferencesTest, HasNoSoundsAndStoresNothingWhereTheKeyIsNowhere) {
  EXPECT_FALSE(preferences().soundsEnabled());
  EXPECT_EQ(store_.writes(), 0);
}

TEST_F(VXDistributedPreferencesTest, RemovesTheSharedKeyWhenAPropertyIsSetToNothing) {
  auto shared = preferences();
  shared.setAbTesterValues("1A");
  shared.setAppsAnalyticsReportDate(Date{5});
  shared.setQuillbaseSessionIdentifier("s");
  EXPECT_EQ(store_.contents(kShared).size(), 3U);
  shared.setAbTesterValues(std::nullopt);
  shared.setAppsAnalyticsReportDate(std::nullopt);
  shared.setQuillbaseSessionIdentifier(std::nullopt);
  EXPECT_TRUE(store_.contents(kShared).empty());
}

TEST_F(VXDistributedPreferencesTest, TakesOverPlaySoundsWhenMade) {
  set(kOwn, "PlaySounds", true);
  auto shared = preferences();
  EXPECT_EQ(store_.contents(kShared), (Dictionary{{"PlaySounds", true}}));
  EXPECT_TRUE(shared.soundsEnabled());
}

TEST_F(VXDistributedPreferencesTest, StoresSoundsAsABoolean) {
  auto shared = preferences();
  shared.setSoundsEnabled(true);
  const Value* stored = nullptr;
  const Dictionary contents = store_.contents(kShared);
  stored = contents.find("PlaySounds");
  ASSERT_NE(stored, nullptr);
  EXPECT_TRUE(stored->is<bool>());
  EXPECT_TRUE(shared.soundsEnabled());
  shared.setSoundsEnabled(false);
  EXPECT_FALSE(shared.soundsEnabled());
}

TEST_F(VXDistributedPreferencesTest, ReadsSoundsFromAnyNumberOrText) {
  set(kShared, "PlaySounds", 2);
  EXPECT_TRUE(preferences().soundsEnabled());
  set(kShared, "PlaySounds", "NO");
  EXPECT_FALSE(preferences().soundsEnabled());
  set(kShared, "PlaySounds", Array{1});
  EXPECT_FALSE(preferences().soundsEnabled());
}

TEST_F(VXDistributedPreferencesTest, FlushesAfterEveryWrite) {
  auto shared = preferences();
  shared.setSoundsEnabled(true);
  shared.setAbTesterValues("");
  EXPECT_EQ(store_.synchronized(), (std::vector<std::string>(2, std::string(kShared))));
}

TEST_F(VXDistributedPreferencesTest, KeepsDatesAtFullPrecision) {
  auto shared = preferences();
  const Date date{500000000.123456789};
  shared.setAppsAnalyticsReportDate(date);
  EXPECT_EQ(shared.appsAnalyticsReportDate(), date);
}

TEST_F(VXDistributedPreferencesTest, AnswersNothingForAValueOfAnotherType) {
  set(kShared, "ABTesterValues", 5);
  set(kShared, "AppsAnalyticsReportDate", "yesterday");
  EXPECT_EQ(preferences().abTesterValues(), std::nullopt);
  EXPECT_EQ(preferences().appsAnalyticsReportDate(), std::nullopt);
}

TEST_F(VXDistributedPreferencesTest, NeverConsultsTheOwnValueAgainAfterTheTakeOver) {
  set(kOwn, "QB_SID", "old");
  auto shared = preferences();
  EXPECT_EQ(shared.quillbaseSessionIdentifier(), "old");
  set(kOwn, "QB_SID", "new");
  EXPECT_EQ(shared.quillbaseSessionIdentifier(), "old");
}

TEST(VXDistributedPreferencesLoadTest, TakesOverPlaySoundsAtProcessStart) {
  static_cast<void>(
      fakes::processPreferences().setValue("PlaySounds", Value(true), "com.example.program"));
  VXDistributedPreferences::load();
  EXPECT_EQ(fakes::processPreferences().contents(kShared), (Dictionary{{"PlaySounds", true}}));
  EXPECT_EQ(VXDistributedPreferences::sharedInstance(), VXDistributedPreferences::sharedInstance());
}

TEST(PreferenceKeyTest, SpellsEveryKeyAsItIsStored) {
  const std::pair<std::string_view, std::string_view> keys[] = {
      {PreferenceKey::MigratedPrefsFromVNX, "MigratedPrefsFromVNX"},
      {PreferenceKey::LaunchCount, "LaunchCount"},
      {PreferenceKey::FirstLaunchDate, "FirstLaunchDate"},
      {PreferenceKey::SUUpdaterChecksForBetaUpdates, "SUUpdaterChecksForBetaUpdates"},
      {PreferenceKey::SUSendProfileInfo, "SUSendProfileInfo"},
      {PreferenceKey::SchedulerShouldStartFullScan, "SchedulerShouldStartFullScan"},
      {PreferenceKey::SchedulerEnabled, "SchedulerEnabled"},
      {PreferenceKey::SchedulerPeriod, "SchedulerPeriod"},
      {PreferenceKey::SchedulerLastNotification, "SchedulerLastNotification"},
      {PreferenceKey::PlaySounds, "PlaySounds"},
      {PreferenceKey::ABTesterValues, "ABTesterValues"},
      {PreferenceKey::InstalledAppsStatisticsEnabled, "InstalledAppsStatisticsEnabled"},
      {PreferenceKey::AppsAnalyticsReportDate, "AppsAnalyticsReportDate"},
      {PreferenceKey::QB_SID, "QB_SID"},
      {PreferenceKey::MenubarAppEnabled, "MenubarAppEnabled"},
      {PreferenceKey::SystemTrashIngored, "SystemTrashIngored"},
      {PreferenceKey::Beta, "Beta"},
      {PreferenceKey::DontRelaunchAppsAfterQuit, "DontRelaunchAppsAfterQuit"},
      {PreferenceKey::IgnoreRAW, "IgnoreRAW"},
      {PreferenceKey::Uninstaller_IgnoreSystemApps, "Uninstaller_IgnoreSystemApps"},
      {PreferenceKey::DisableHardAnimations, "DisableHardAnimations"},
      {PreferenceKey::DisableDetailedProgress, "DisableDetailedProgress"},
      {PreferenceKey::RemoteConfigVersion, "RemoteConfigVersion"},
      {PreferenceKey::RemoteConfigEnableUsageTracking, "RemoteConfigEnableUsageTracking"},
      {PreferenceKey::RemConfig_SendAppUsageStat, "RemConfig_SendAppUsageStat"},
      {PreferenceKey::VXAULastSentDate, "VXAULastSentDate"},
      {PreferenceKey::EnableUninstallDiscount, "EnableUninstallDiscount"},
      {PreferenceKey::RemConfig_UninstallDiscountValue, "RemConfig_UninstallDiscountValue"},
      {PreferenceKey::UninstallDiscountMinCleanedLimit, "UninstallDiscountMinCleanedLimit"},
      {PreferenceKey::DisableCleanLogging, "DisableCleanLogging"},
      {PreferenceKey::LanguagesPreferences, "LanguagesPreferences"},
      {PreferenceKey::PhotoJunk_LastUsedLibrary, "PhotoJunk_LastUsedLibrary"},
      {PreferenceKey::LargeOldScanPaths, "LargeOldScanPaths"},
      {PreferenceKey::LastLaunchedVersion, "LastLaunchedVersion"},
      {PreferenceKey::ShowFilePaths, "ShowFilePaths"},
  };
  for (const auto& [key, text] : keys) EXPECT_EQ(key, text);
}

}  // namespace
}  // namespace vornix
