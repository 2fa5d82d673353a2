#include "tools/ctl/CommandLine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tools/ctl/PathsCommand.h"

namespace vornix::tools {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

CommandResult echo(Words words) {
  std::string all;
  for (const char* word : words) all += std::string("[") + word + "]";
  return {.status = 7, .output = all, .errors = "said so"};
}

const std::vector<Command> kCommands{
    {"echo", "[WORD...]", "says it again", echo},
    {"silence", "", "says nothing", [](Words) { return CommandResult{}; }}};

CommandResult runWith(const std::vector<const char*>& words) {
  return runCommandLine(kCommands, words);
}

TEST(CommandLine, RunsTheNamedCommandWithTheWordsBehindIt) {
  const auto result = runWith({"echo", "a", "", "--b c", "help"});
  EXPECT_EQ(result.status, 7);
  EXPECT_EQ(result.output, "[a][][--b c][help]");
  EXPECT_EQ(result.errors, "said so");
  EXPECT_EQ(runWith({"echo"}).output, "");
  EXPECT_EQ(runWith({"silence"}).status, kDone);
}

TEST(CommandLine, PrintsTheUsageOnRequest) {
  for (const char* word : {"help", "-h", "--help"}) {
    const auto result = runWith({word});
    EXPECT_EQ(result.status, kDone);
    EXPECT_THAT(result.errors, IsEmpty());
    EXPECT_EQ(result.output,
              "usage: vornixctl COMMAND\n"
              "  echo [WORD...]   says it again\n"
              "  silence          says nothing\n"
              "  help             shows this text\n");
  }
}

TEST(CommandLine, RefusesWhatItDoesNotKnow) {
  struct Row {
    std::vector<const char*> words;
    const char* sentence;
  };
  const Row rows[] = {
      {{}, "no command is given"},
      {{""}, "there is no command \"\""},
      {{"Echo"}, "there is no command \"Echo\""},
      {{"ech"}, "there is no command \"ech\""},
      {{"echo "}, "there is no command \"echo \""},
      {{"--echo"}, "there is no command \"--echo\""},
      {{"--", "echo"}, "there is no command \"--\""},
      {{"\xFF%@"}, "there is no command \"\xFF%@\""},
      {{"help", "echo"}, "help takes nothing behind it"},
      {{"--help", ""}, "help takes nothing behind it"},
  };
  for (const auto& row : rows) {
    const auto result = runWith(row.words);
    EXPECT_EQ(result.status, kBadUsage) << row.sentence;
    EXPECT_THAT(result.output, IsEmpty());
    EXPECT_THAT(result.errors, StartsWith(std::string("vornixctl: ") + row.sentence + "\n"));
    EXPECT_THAT(result.errors, HasSubstr("vornixctl help"));
  }
}

std::vector<Location> twoPlaces() {
  return {{"userHome", "/home/ada", true}, {"darwinUserCaches", std::nullopt, false}};
}

TEST(PathsCommand, PrintsATableUnlessAskedForJson) {
  const auto places = twoPlaces();
  EXPECT_EQ(runPathsCommand({}, twoPlaces).output, locationTable(places));
  const std::vector<const char*> json{"--json"};
  EXPECT_EQ(runPathsCommand(json, twoPlaces).output, locationsAsJson(places));
  const std::vector<const char*> twice{"--json", "--json"};
  EXPECT_EQ(runPathsCommand(twice, twoPlaces).output, locationsAsJson(places));
  EXPECT_EQ(runPathsCommand(json, twoPlaces).status, kDone);
}

TEST(PathsCommand, AsksForNoLocationWhenTheWordsMakeNoSense) {
  for (const char* word : {"", "json", "-json", "--JSON", "--json=1", "userHome", "-h"}) {
    const std::vector<const char*> words{"--json", word};
    const auto result = runPathsCommand(words, [] {
      ADD_FAILURE() << "asked";
      return std::vector<Location>{};
    });
    EXPECT_EQ(result.status, kBadUsage);
    EXPECT_THAT(result.errors, HasSubstr("paths does not know \"" + std::string(word) + "\""));
  }
}

}  // namespace
}  // namespace vornix::tools
