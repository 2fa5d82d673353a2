#pragma once

#include <string_view>

// The preference keys that the programs of the family share, each named as it is written.
namespace vornix::PreferenceKey {

inline constexpr std::string_view MigratedPrefsFromVNX = "MigratedPrefsFromVNX";
inline constexpr std::string_view LaunchCount = "LaunchCount";
inline constexpr std::string_view FirstLaunchDate = "FirstLaunchDate";
inline constexpr std::string_view SUUpdaterChecksForBetaUpdates = "SUUpdaterChecksForBetaUpdates";
inline constexpr std::string_view SUSendProfileInfo = "SUSendProfileInfo";
inline constexpr std::string_view SchedulerShouldStartFullScan = "SchedulerShouldStartFullScan";
inline constexpr std::string_view SchedulerEnabled = "SchedulerEnabled";
inline constexpr std::string_view SchedulerPeriod = "SchedulerPeriod";
inline constexpr std::string_view SchedulerLastNotification = "SchedulerLastNotification";
inline constexpr std::string_view PlaySounds = "PlaySounds";
inline constexpr std::string_view ABTesterValues = "ABTesterValues";
inline constexpr std::string_view InstalledAppsStatisticsEnabled = "InstalledAppsStatisticsEnabled";
inline constexpr std::string_view AppsAnalyticsReportDate = "AppsAnalyticsReportDate";
inline constexpr std::string_view QB_SID = "QB_SID";
inline constexpr std::string_view MenubarAppEnabled = "MenubarAppEnabled";
inline constexpr std::string_view SystemTrashIngored = "SystemTrashIngored";
inline constexpr std::string_view Beta = "Beta";
inline constexpr std::string_view DontRelaunchAppsAfterQuit = "DontRelaunchAppsAfterQuit";
inline constexpr std::string_view IgnoreRAW = "IgnoreRAW";
inline constexpr std::string_view Uninstaller_IgnoreSystemApps = "Uninstaller_IgnoreSystemApps";
inline constexpr std::string_view DisableHardAnimations = "DisableHardAnimations";
inline constexpr std::string_view DisableDetailedProgress = "DisableDetailedProgress";
inline constexpr std::string_view RemoteConfigVersion = "RemoteConfigVersion";
inline constexpr std::string_view RemoteConfigEnableUsageTracking =
    "RemoteConfigEnableUsageTracking";
inline constexpr std::string_view RemConfig_SendAppUsageStat = "RemConfig_SendAppUsageStat";
inline constexpr std::string_view VXAULastSentDate = "VXAULastSentDate";
inline constexpr std::string_view EnableUninstallDiscount = "EnableUninstallDiscount";
inline constexpr std::string_view RemConfig_UninstallDiscountValue =
    "RemConfig_UninstallDiscountValue";
inline constexpr std::string_view UninstallDiscountMinCleanedLimit =
    "UninstallDiscountMinCleanedLimit";
inline constexpr std::string_view DisableCleanLogging = "DisableCleanLogging";
inline constexpr std::string_view LanguagesPreferences = "LanguagesPreferences";
inline constexpr std::string_view PhotoJunk_LastUsedLibrary = "PhotoJunk_LastUsedLibrary";
inline constexpr std::string_view LargeOldScanPaths = "LargeOldScanPaths";
inline constexpr std::string_view LastLaunchedVersion = "LastLaunchedVersion";
inline constexpr std::string_view ShowFilePaths = "ShowFilePaths";

}  // namespace vornix::PreferenceKey
