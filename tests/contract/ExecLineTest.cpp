#include "platform/linux/desktop/applications/ExecLine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vornix::desktop {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Lines = std::vector<CommandLine>;

DesktopEntry entryWith(const std::string& exec) {
  return {.identifier = "org.example.App",
          .path = "/apps/org.example.App.desktop",
          .name = "Ex Ample",
          .icon = "face",
          .exec = exec};
}

std::optional<Lines> linesOf(const std::string& exec, const std::vector<std::string>& files,
                             const std::vector<std::string>& arguments = {}) {
  std::string problem;
  auto lines = commandLines(entryWith(exec), files, arguments, problem);
  EXPECT_EQ(lines.has_value(), problem.empty());
  return lines;
}

TEST(ExecLine, SplitsWordsAndUndoesQuotes) {
  const std::pair<const char*, CommandLine> cases[] = {
      {"app", {"app"}},
      {"  app \t a  b ", {"app", "a", "b"}},
      {R"("/a b/app" "c d")", {"/a b/app", "c d"}},
      {R"(app "a\"b" "\$HOME \`x\` \\" "\n")", {"app", "a\"b", "$HOME `x` \\", "\\n"}},
      {R"(sh -c 'a "b" \c')", {"sh", "-c", "a \"b\" \\c"}},
      {R"(app a\ b "" x""y)", {"app", "a b", "", "xy"}},
      {"app $HOME ~ * ; | &", {"app", "$HOME", "~", "*", ";", "|", "&"}},
  };
  for (const auto& [exec, words] : cases) EXPECT_EQ(wordsOfExec(exec), words) << exec;
}

TEST(ExecLine, RefusesLinesWithoutWordsAndOpenQuotes) {
  for (const auto* exec : {"", "   ", "app \"a", "app 'a", "\"", "app \"a\\\""})
    EXPECT_EQ(wordsOfExec(exec), std::nullopt) << exec;
}

TEST(ExecLine, PutsFilesInThePlaceOfTheirCode) {
  const std::vector<std::string> two{"/a b", "/c"};
  const std::pair<const char*, Lines> cases[] = {
      {"app %F", {{"app", "/a b", "/c"}}},
      {"app %U -x", {{"app", "/a b", "/c", "-x"}}},
      {"app %f", {{"app", "/a b"}, {"app", "/c"}}},
      {"app -o %u -x", {{"app", "-o", "/a b", "-x"}, {"app", "-o", "/c", "-x"}}},
      {"app --file=%f", {{"app", "--file=/a b"}, {"app", "--file=/c"}}},
      {"app", {{"app", "/a b", "/c"}}},
      {"app -x", {{"app", "-x", "/a b", "/c"}}},
  };
  for (const auto& [exec, lines] : cases) EXPECT_EQ(linesOf(exec, two), lines) << exec;
}

TEST(ExecLine, LeavesTheCodeOutWhenThereAreNoFiles) {
  for (const auto* exec : {"app %F", "app %U", "app %f", "app %u", "app", "app %d %D %n %N %v %m"})
    EXPECT_EQ(linesOf(exec, {}), (Lines{{"app"}})) << exec;
  EXPECT_EQ(linesOf("app \"\"", {}), (Lines{{"app", ""}}));
}

TEST(ExecLine, AppendsTheArgumentsToEveryLine) {
  EXPECT_EQ(linesOf("app %F -x", {"/a"}, {"-scheduledScan"}),
            (Lines{{"app", "/a", "-x", "-scheduledScan"}}));
  EXPECT_EQ(linesOf("app %f", {"/a", "/b"}, {"-s", ""}),
            (Lines{{"app", "/a", "-s", ""}, {"app", "/b", "-s", ""}}));
  EXPECT_EQ(linesOf("app %F", {}, {"%F", "\"q"}), (Lines{{"app", "%F", "\"q"}}));
}

TEST(ExecLine, FillsInIconNamePathAndPercentSign) {
  EXPECT_EQ(linesOf("app %i %c %k 100%% x%", {}),
            (Lines{{"app", "--icon", "face", "Ex Ample", "/apps/org.example.App.desktop", "100%",
                    "x%"}}));
  DesktopEntry entry = entryWith("app %i");
  entry.icon.clear();
  std::string problem;
  EXPECT_EQ(commandLines(entry, {}, {}, problem), (Lines{{"app"}}));
}

TEST(ExecLine, DoesNotReadCodesInFileNames) {
  EXPECT_EQ(linesOf("app %F", {"/%f", "/%%", "/\"x"}), (Lines{{"app", "/%f", "/%%", "/\"x"}}));
  EXPECT_EQ(linesOf("app %f", {"/%u"}), (Lines{{"app", "/%u"}}));
}

TEST(ExecLine, RefusesUnknownCodesAndListsInsideAWord) {
  for (const auto* exec :
       {"", "app %x", "app %1", "app --files=%F", "app %Fx", "\"\" a", "app '%U "})
    EXPECT_EQ(linesOf(exec, {"/a"}), std::nullopt) << exec;
}

TEST(ExecLine, KnowsWhatEveryProcessOfAnEntryStartsWith) {
  EXPECT_THAT(fixedWordsOfExec("app -x --file=%f -y"), ElementsAre("app", "-x"));
  EXPECT_THAT(fixedWordsOfExec("env A=1 B=2 app %F"), ElementsAre("app"));
  EXPECT_THAT(fixedWordsOfExec("/usr/bin/env A=1"), IsEmpty());
  EXPECT_THAT(fixedWordsOfExec("%f app"), IsEmpty());
  EXPECT_THAT(fixedWordsOfExec("\"app"), IsEmpty());
}

}  // namespace
}  // namespace vornix::desktop
