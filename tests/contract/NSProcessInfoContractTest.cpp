#include "platform/system/NSProcessInfo.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <cstdlib>
#include <map>

#include "platform/linux/system/Account.h"
#include "platform/linux/system/LocaleEnvironment.h"
#include "tests/fakes/FakeProcessInfo.h"

namespace vornix {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Factory = const NSProcessInfo& (*)();

const NSProcessInfo& fakeInfo() {
  static fakes::FakeProcessInfo info;
  info.variables = {{"VORNIX_PRESENT", "a=b"}, {"VORNIX_EMPTY", ""}};
  return info;
}

class NSProcessInfoContract : public testing::TestWithParam<Factory> {
 protected:
  void SetUp() override {
    setenv("VORNIX_PRESENT", "a=b", 1);
    setenv("VORNIX_EMPTY", "", 1);
    unsetenv("VORNIX_ABSENT");
  }
  const NSProcessInfo& info_ = GetParam()();
};

INSTANTIATE_TEST_SUITE_P(Fake, NSProcessInfoContract, testing::Values(&fakeInfo));
INSTANTIATE_TEST_SUITE_P(Linux, NSProcessInfoContract,
                         testing::Values(&NSProcessInfo::processInfo));

TEST_P(NSProcessInfoContract, TellsSetEmptyAndMissingVariablesApart) {
  EXPECT_EQ(info_.environment("VORNIX_PRESENT"), "a=b");
  EXPECT_EQ(info_.environment("VORNIX_EMPTY"), "");
  EXPECT_EQ(info_.environment("VORNIX_ABSENT"), std::nullopt);
  EXPECT_EQ(info_.environment("VORNIX_PRESENT=a"), std::nullopt);
  EXPECT_EQ(info_.environment(""), std::nullopt);
}

TEST_P(NSProcessInfoContract, NamesTheProcessAfterItsExecutable) {
  EXPECT_THAT(info_.executablePath(), testing::StartsWith("/"));
  EXPECT_THAT(info_.executablePath(), testing::EndsWith("/" + info_.processName()));
  EXPECT_FALSE(info_.processName().empty());
  EXPECT_EQ(info_.processName().find('/'), std::string::npos);
}

TEST_P(NSProcessInfoContract, AnswersAnAbsoluteHomeWithoutATrailingSlash) {
  const auto home = info_.homeDirectory();
  EXPECT_THAT(home, testing::StartsWith("/"));
  EXPECT_TRUE(home == "/" || !home.ends_with('/')) << home;
}

TEST_P(NSProcessInfoContract, KnowsProcessUserAndSystem) {
  EXPECT_GT(info_.processIdentifier(), 0);
  EXPECT_FALSE(info_.userName().empty());
  EXPECT_GT(info_.operatingSystemVersion().major, 0);
}

class LinuxProcessInfo : public testing::Test {
 protected:
  const NSProcessInfo& info_ = NSProcessInfo::processInfo();
};

TEST_F(LinuxProcessInfo, AgreesWithTheSystem) {
  EXPECT_EQ(info_.processIdentifier(), getpid());
  EXPECT_EQ(info_.processName(), "contract");
  EXPECT_EQ(access(info_.executablePath().c_str(), X_OK), 0);
  utsname names{};
  ASSERT_EQ(uname(&names), 0);
  const auto version = info_.operatingSystemVersion();
  const auto start = std::to_string(version.major) + "." + std::to_string(version.minor);
  EXPECT_THAT(std::string(names.release), testing::StartsWith(start));
}

TEST_F(LinuxProcessInfo, TakesTheHomeFromTheEnvironment) {
  setenv("HOME", "/tmp/a home//", 1);
  EXPECT_EQ(info_.homeDirectory(), "/tmp/a home");
  setenv("HOME", "/", 1);
  EXPECT_EQ(info_.homeDirectory(), "/");
}

TEST_F(LinuxProcessInfo, FallsBackToTheAccountsHomeForAMissingOrRelativeOne) {
  const auto account = accountOfUser(getuid());
  ASSERT_TRUE(account);
  for (const char* home : {"", "relative", "./x"}) {
    setenv("HOME", home, 1);
    EXPECT_EQ(info_.homeDirectory(), account->home) << home;
  }
  unsetenv("HOME");
  EXPECT_EQ(info_.homeDirectory(), account->home);
}

TEST_F(LinuxProcessInfo, NamesTheRealUserWhateverTheEnvironmentSays) {
  setenv("USER", "somebody", 1);
  setenv("LOGNAME", "somebody", 1);
  EXPECT_EQ(info_.userName(), accountOfUser(getuid())->name);
}

TEST(Account, IsMissingForAnUnknownUser) {
  EXPECT_FALSE(accountOfUser(3999999999U));
}

struct Languages {
  std::map<std::string, std::string> variables;
  std::vector<std::string> expected;
};

TEST(LocaleEnvironment, ReadsTheLanguagesInOrderOfPrecedence) {
  const std::vector<Languages> table{
      {{{"LANG", "de_DE.UTF-8"}}, {"de-DE"}},
      {{{"LANG", "de"}}, {"de"}},
      {{{"LANG", "de_DE@euro"}}, {"de-DE"}},
      {{{"LANG", "de_DE"}, {"LC_MESSAGES", "fr_FR"}}, {"fr-FR"}},
      {{{"LANG", "de_DE"}, {"LC_MESSAGES", ""}}, {"de-DE"}},
      {{{"LANG", "de_DE"}, {"LC_MESSAGES", "fr_FR"}, {"LC_ALL", "es_ES.UTF-8"}}, {"es-ES"}},
      {{{"LANG", "de_DE"}, {"LC_TIME", "fr_FR"}}, {"de-DE"}},
      {{{"LANG", "fr_FR"}, {"LANGUAGE", "de_AT:de:en"}}, {"de-AT", "de", "en"}},
      {{{"LANG", "fr_FR"}, {"LANGUAGE", ":de::de:"}}, {"de"}},
      {{{"LANG", "fr_FR"}, {"LANGUAGE", ""}}, {"fr-FR"}},
      {{{"LANGUAGE", "de:C:fr"}}, {"de"}},
      {{{"LANG", "sr_RS.UTF-8@latin"}}, {"sr-Latn-RS"}},
      {{{"LANG", "es_419"}}, {"es-419"}},
      {{{"LANG", "DE_de"}}, {"de-DE"}},
      {{}, {}},
      {{{"LANG", "C"}}, {}},
      {{{"LANG", "C.UTF-8"}}, {}},
      {{{"LANG", "POSIX"}}, {}},
      {{{"LANG", "de_DE"}, {"LC_ALL", "C"}}, {}},
      {{{"LANG", "../../etc"}}, {}},
      {{{"LANG", "de_DE/.."}}, {}},
      {{{"LANG", "12_34"}}, {}},
      {{{"LANG", "d\xC3\xA9_DE"}}, {}},
  };
  for (const auto& [variables, expected] : table) {
    const auto lookup = [&variables = variables](const char* name) -> std::optional<std::string> {
      const auto found = variables.find(name);
      return found != variables.end() ? std::optional(found->second) : std::nullopt;
    };
    EXPECT_EQ(languagesOfEnvironment(lookup), expected) << testing::PrintToString(variables);
  }
}

TEST_F(LinuxProcessInfo, AnswersTheLanguagesOfItsOwnEnvironment) {
  for (const char* name : {"LANGUAGE", "LC_ALL", "LC_MESSAGES"}) unsetenv(name);
  setenv("LANG", "de_DE.UTF-8", 1);
  EXPECT_THAT(info_.localeLanguages(), ElementsAre("de-DE"));
  setenv("LANG", "C.UTF-8", 1);
  EXPECT_THAT(info_.localeLanguages(), IsEmpty());
}

}  // namespace
}  // namespace vornix
