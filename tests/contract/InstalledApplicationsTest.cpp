#include "platform/linux/desktop/applications/InstalledApplications.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/base/Diagnostics.h"
#include "platform/linux/desktop/applications/DesktopSession.h"
#include "tests/fakes/FakeProcessInfo.h"
#include "tests/support/ScratchFolder.h"

namespace vornix::desktop {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr std::string_view kEntry =
    "[Desktop Entry]\nType=Application\nName=App\nName[de]=Anwendung\nExec=app %F\n";

class InstalledApplicationsTest : public testing::Test {
 protected:
  InstalledApplicationsTest() {
    setDiagnosticReceiver([this](std::string_view line) { diagnostics.emplace_back(line); });
  }
  ~InstalledApplicationsTest() override { setDiagnosticReceiver({}); }

  InstalledApplications installed() const {
    return {{folder.path("home"), folder.path("none"), folder.path("system")},
            ProgramSearch({folder.path("bin")}),
            "de_DE.UTF-8"};
  }
  std::optional<std::string> pathOf(std::string_view identifier) const {
    const auto entry = installed().find(identifier);
    return entry ? std::optional(entry->path) : std::nullopt;
  }
  std::vector<std::string> identifiers() const {
    std::vector<std::string> identifiers;
    for (const auto& entry : installed().entries()) identifiers.push_back(entry.identifier);
    return identifiers;
  }

  tests::ScratchFolder folder;
  std::vector<std::string> diagnostics;
};

TEST_F(InstalledApplicationsTest, TakesTheEntryOfTheMostImportantFolder) {
  const auto system = folder.write("system/org.example.App.desktop", kEntry);
  EXPECT_EQ(pathOf("org.example.App"), system);
  const auto home = folder.write("home/org.example.App.desktop", kEntry);
  EXPECT_EQ(pathOf("org.example.App"), home);
  EXPECT_THAT(identifiers(), ElementsAre("org.example.App"));
  EXPECT_THAT(diagnostics, IsEmpty());
}

TEST_F(InstalledApplicationsTest, ComparesIdentifiersIgnoringCaseButPrefersTheExactOne) {
  const auto lower = folder.write("home/org.example.app.desktop", kEntry);
  EXPECT_EQ(pathOf("Org.Example.App"), lower);
  const auto exact = folder.write("system/Org.Example.App.desktop", kEntry);
  EXPECT_EQ(pathOf("Org.Example.App"), exact);
  EXPECT_EQ(pathOf("org.example"), std::nullopt);
  EXPECT_EQ(pathOf(""), std::nullopt);
}

TEST_F(InstalledApplicationsTest, JoinsTheNamesOfNestedFolders) {
  const auto path = folder.write("system/kde/games/chess.desktop", kEntry);
  EXPECT_EQ(pathOf("kde-games-chess"), path);
  EXPECT_EQ(pathOf("chess"), std::nullopt);
}

TEST_F(InstalledApplicationsTest, AHiddenEntryHidesThoseFurtherDown) {
  folder.write("system/org.example.App.desktop", kEntry);
  folder.write("home/org.example.App.desktop", "[Desktop Entry]\nHidden=true\n");
  EXPECT_EQ(pathOf("org.example.App"), std::nullopt);
  EXPECT_THAT(identifiers(), IsEmpty());
  EXPECT_THAT(diagnostics, IsEmpty());
}

TEST_F(InstalledApplicationsTest, LooksForTheProgramThatAnEntryTries) {
  folder.write("home/app.desktop", std::string(kEntry) + "TryExec=tried\n");
  EXPECT_EQ(pathOf("app"), std::nullopt);
  EXPECT_THAT(diagnostics, ElementsAre(HasSubstr("\"tried\" is missing")));
  const auto program = folder.write("bin/tried", "");
  EXPECT_EQ(pathOf("app"), std::nullopt);
  ASSERT_EQ(chmod(program.c_str(), 0755), 0);
  EXPECT_NE(pathOf("app"), std::nullopt);
}

TEST_F(InstalledApplicationsTest, ReadsTheEntryInThePersonsLanguage) {
  folder.write("home/app.desktop", std::string(kEntry) + "Terminal=true\nPath=/tmp\nIcon=i\n");
  const auto entry = installed().find("app");
  ASSERT_TRUE(entry);
  EXPECT_EQ(entry->name, "Anwendung");
  EXPECT_EQ(entry->exec, "app %F");
  EXPECT_EQ(entry->workingDirectory, "/tmp");
  EXPECT_EQ(entry->icon, "i");
  EXPECT_TRUE(entry->runsInTerminal);
}

TEST_F(InstalledApplicationsTest, SaysWhyAnEntryCannotBeUsed) {
  const std::pair<std::string, std::string> cases[] = {
      {"link", "[Desktop Entry]\nType=Link\nURL=x\n"},
      {"untyped", "[Desktop Entry]\nExec=app\n"},
      {"empty", ""},
      {"elsewhere", "[Other]\nType=Application\n"},
      {"zero", std::string(kEntry) + std::string("X=\0\n", 4)},
      {"huge", std::string(kEntry) + "X=" + std::string(std::size_t{2} << 20U, 'x')},
      {"binary",
       "\x7F"
       "ELF\xFF\xFE[[[\n=\n"},
  };
  for (const auto& [name, contents] : cases) {
    diagnostics.clear();
    const auto path = folder.write("home/" + name + ".desktop", contents);
    EXPECT_EQ(pathOf(name), std::nullopt) << name;
    EXPECT_THAT(diagnostics, ElementsAre(HasSubstr(path))) << name;
  }
  EXPECT_THAT(identifiers(), IsEmpty());
}

TEST_F(InstalledApplicationsTest, PipesFoldersAndLinksInCirclesDoNotHoldItUp) {
  const auto good = folder.write("home/app.desktop", kEntry);
  folder.write("home/folder.desktop/x", "");
  ASSERT_EQ(mkfifo(folder.path("home/pipe.desktop").c_str(), 0600), 0);
  for (const auto* name : {"home/a", "home/b", "home/c"})
    ASSERT_EQ(symlink(".", folder.path(name).c_str()), 0);
  ASSERT_EQ(symlink("nowhere", folder.path("home/broken.desktop").c_str()), 0);
  EXPECT_EQ(pathOf("app"), good);
  EXPECT_EQ(pathOf("pipe"), std::nullopt);
  EXPECT_EQ(pathOf("folder"), std::nullopt);
  EXPECT_EQ(pathOf("broken"), std::nullopt);
}

TEST_F(InstalledApplicationsTest, KnowsTheIdentifierOfAnEntrysFile) {
  std::string problem;
  const auto nested = installed().atPath(folder.write("system/a/b.desktop", kEntry), problem);
  ASSERT_TRUE(nested) << problem;
  EXPECT_EQ(nested->identifier, "a-b");
  const auto elsewhere = installed().atPath(folder.write("other/c.desktop", kEntry), problem);
  ASSERT_TRUE(elsewhere) << problem;
  EXPECT_EQ(elsewhere->identifier, "c");
  EXPECT_EQ(installed().atPath(folder.path("system/missing.desktop"), problem), std::nullopt);
  EXPECT_THAT(problem, HasSubstr("missing.desktop"));
}

TEST(DesktopSession, LooksIntoTheFoldersOfTheEnvironment) {
  fakes::FakeProcessInfo process;
  process.home = "/home/ada";
  process.variables = {{"XDG_DATA_HOME", "/data"},
                       {"XDG_DATA_DIRS", "/one:relative::/two/"},
                       {"PATH", "/bin:.:/usr/bin"},
                       {"LANG", "en_US"},
                       {"LC_MESSAGES", "de_DE"}};
  const auto session = DesktopSession::ofProcess(process);
  EXPECT_THAT(session.applicationFolders,
              ElementsAre("/data/applications", "/one/applications", "/two/applications"));
  EXPECT_THAT(session.programFolders, ElementsAre("/bin", "/usr/bin"));
  EXPECT_EQ(session.locale, "de_DE");
  EXPECT_EQ(session.openTool, "/opt/vornix/libexec/vornix/vornix-open");
}

TEST(DesktopSession, HasFoldersOfItsOwnWhereTheEnvironmentNamesNone) {
  fakes::FakeProcessInfo process;
  process.home = "/home/ada";
  process.variables = {{"XDG_DATA_HOME", "relative"}, {"XDG_DATA_DIRS", ""}};
  EXPECT_THAT(DesktopSession::ofProcess(process).applicationFolders,
              ElementsAre("/home/ada/.local/share/applications", "/usr/local/share/applications",
                          "/usr/share/applications"));
}

}  // namespace
}  // namespace vornix::desktop
