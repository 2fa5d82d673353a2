#include "analytics/AnalyticsConfiguration.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

namespace vornix {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class ReadingTheConfiguration : public testing::Test {
 protected:
  AnalyticsConfiguration read(const std::optional<Dictionary>& list) {
    complaints_.clear();
    return analyticsConfigurationFromPropertyList(
        list, [this](std::string_view line) { complaints_.emplace_back(line); });
  }

  static Dictionary whole() {
    return {{"CollectionHost", "collect.example:8443"},
            {"ProductionIdentifier", "UA-1-1"},
            {"DebugIdentifier", "UA-1-2"},
            {"BackupIdentifier", "UA-1-3"},
            {"CategoryIdentifiers", Dictionary{{"Scheduler", "UA-1-4"}}},
            {"CertificateAuthorityFile", "/etc/collector.pem"}};
  }

  std::vector<std::string> complaints_;
};

TEST_F(ReadingTheConfiguration, TakesEveryEntry) {
  const auto configuration = read(whole());
  EXPECT_EQ(configuration, (AnalyticsConfiguration{"collect.example:8443",
                                                   "UA-1-1",
                                                   "UA-1-2",
                                                   "UA-1-3",
                                                   {{"Scheduler", "UA-1-4"}},
                                                   "/etc/collector.pem"}));
  EXPECT_THAT(complaints_, IsEmpty());
}

TEST_F(ReadingTheConfiguration, ReachesNobodyWithoutAFileAndSaysSo) {
  const auto configuration = read(std::nullopt);
  EXPECT_EQ(configuration, AnalyticsConfiguration{});
  EXPECT_EQ(configuration.collectionHost, "collect.invalid");
  EXPECT_THAT(complaints_, ElementsAre(HasSubstr("missing or unreadable")));
}

TEST_F(ReadingTheConfiguration, KeepsThePlaceholderOfAMissingEntryAndNamesIt) {
  for (const auto* key :
       {"CollectionHost", "ProductionIdentifier", "DebugIdentifier", "BackupIdentifier"}) {
    auto list = whole();
    list.remove(key);
    (void)read(list);
    EXPECT_THAT(complaints_, ElementsAre(HasSubstr(key)));
  }
  auto list = whole();
  list.remove("ProductionIdentifier");
  EXPECT_EQ(read(list).productionIdentifier, AnalyticsConfiguration{}.productionIdentifier);
}

TEST_F(ReadingTheConfiguration, KeepsThePlaceholderOfAnIllTypedEntryAndNamesIt) {
  for (const auto* key : {"CollectionHost", "ProductionIdentifier", "DebugIdentifier",
                          "BackupIdentifier", "CategoryIdentifiers", "CertificateAuthorityFile"}) {
    auto list = whole();
    list.set(key, 7);
    (void)read(list);
    EXPECT_THAT(complaints_, ElementsAre(HasSubstr(key)));
  }
  auto list = whole();
  list.set("BackupIdentifier", "");
  EXPECT_EQ(read(list).backupIdentifier, AnalyticsConfiguration{}.backupIdentifier);
}

TEST_F(ReadingTheConfiguration, RefusesAHostThatIsMoreThanAHost) {
  for (const auto* host : {"https://collect.example", "a b", "user@host", "host/path", "h?x"}) {
    auto list = whole();
    list.set("CollectionHost", host);
    EXPECT_EQ(read(list).collectionHost, "collect.invalid") << host;
    EXPECT_THAT(complaints_, ElementsAre(HasSubstr(host)));
  }
}

TEST_F(ReadingTheConfiguration, SkipsACategoryWithoutAnIdentifierAndKeepsTheOthers) {
  auto list = whole();
  list.set("CategoryIdentifiers", Dictionary{{"Errors", 7}, {"CD", ""}, {"Scheduler", "UA-1-4"}});
  EXPECT_EQ(read(list).categoryIdentifiers, (CategoryIdentifiers{{"Scheduler", "UA-1-4"}}));
  EXPECT_THAT(complaints_, ElementsAre(HasSubstr("Errors"), HasSubstr("CD")));
}

TEST_F(ReadingTheConfiguration, NeedsNoCertificateAuthorityFile) {
  auto list = whole();
  list.remove("CertificateAuthorityFile");
  EXPECT_EQ(read(list).certificateAuthorityFile, "");
  EXPECT_THAT(complaints_, IsEmpty());
}

}  // namespace
}  // namespace vornix
