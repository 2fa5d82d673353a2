#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <memory>
#include <vector>

#include "platform/linux/system/SystemLogSockets.h"
#include "platform/system/SystemLog.h"
#include "tests/support/ScratchFolder.h"
#include "tests/support/SystemLogListener.h"

namespace vornix {
namespace {

using testing::HasSubstr;
using testing::StartsWith;
using tests::journalFields;
using tests::SystemLogListener;

class LinuxSystemLog : public testing::Test {
 protected:
  [[nodiscard]] std::unique_ptr<SystemLogClient> open(
      const std::optional<std::string>& facility = std::nullopt) const {
    return openSystemLogAt({journalPath_, syslogPath_}, facility, "program");
  }

  const tests::ScratchFolder folder_;
  const std::string journalPath_ = folder_.path("journal");
  const std::string syslogPath_ = folder_.path("log");
};

TEST_F(LinuxSystemLog, MarksRecordsOfTheJournalWithTheirOrigin) {
  const SystemLogListener journal(journalPath_);
  open()->log(3, "x");
  auto fields = journalFields(journal.receive());
  EXPECT_EQ(fields["SYSLOG_IDENTIFIER"], "program");
  EXPECT_EQ(fields["SYSLOG_PID"], std::to_string(getpid()));
  EXPECT_EQ(fields["SYSLOG_FACILITY"], "1");
  EXPECT_FALSE(fields.contains("FACILITY"));
}

TEST_F(LinuxSystemLog, KnowsTheNumbersOfTheLogsOwnFacilities) {
  const SystemLogListener journal(journalPath_);
  const std::vector<std::pair<std::string, std::string>> table{
      {"user", "1"}, {"daemon", "3"}, {"local7", "23"}, {"kern", "1"}, {"", "1"}, {"mine", "1"}};
  for (const auto& [facility, number] : table) {
    open(facility)->log(5, "x");
    EXPECT_EQ(journalFields(journal.receive())["SYSLOG_FACILITY"], number) << facility;
  }
}

TEST_F(LinuxSystemLog, CannotBeFooledByLineEndsInAFacility) {
  const SystemLogListener journal(journalPath_);
  open("a\nMESSAGE=forged")->log(5, "true");
  auto fields = journalFields(journal.receive());
  EXPECT_EQ(fields["MESSAGE"], "true");
  EXPECT_EQ(fields["FACILITY"], "a\nMESSAGE=forged");
}

TEST_F(LinuxSystemLog, EndsAMessageAtItsFirstNullByte) {
  const SystemLogListener journal(journalPath_);
  open()->log(5, std::string_view("a\0b", 3));
  EXPECT_EQ(journalFields(journal.receive())["MESSAGE"], "a");
}

TEST_F(LinuxSystemLog, SendsWhatIsTooLongForADatagramAsASealedFile) {
  const SystemLogListener journal(journalPath_);
  const std::string message(1000000, 'm');
  open()->log(5, message);
  EXPECT_EQ(journalFields(journal.receive())["MESSAGE"], message);
  EXPECT_TRUE(journal.lastWasSealed());
}

TEST_F(LinuxSystemLog, FindsAJournalThatWasStartedAnew) {
  auto journal = std::make_unique<SystemLogListener>(journalPath_);
  const auto client = open();
  journal.reset();
  journal = std::make_unique<SystemLogListener>(journalPath_);
  client->log(5, "again");
  EXPECT_EQ(journalFields(journal->receive())["MESSAGE"], "again");
}

TEST_F(LinuxSystemLog, UsesTheOlderProtocolWhereThereIsNoJournal) {
  const SystemLogListener syslog(syslogPath_);
  const auto process = "program[" + std::to_string(getpid()) + "]: ";
  open()->log(3, "message");
  EXPECT_THAT(syslog.receive(),
              testing::MatchesRegex("<11>[A-Z][a-z]+ [ 1-3][0-9] [0-9:]+ program\\[[0-9]+\\]: "
                                    "message"));
  open("daemon")->log(1, "message");
  EXPECT_THAT(syslog.receive(), testing::AllOf(StartsWith("<25>"), HasSubstr(process + "message")));
  open("mine")->log(6, "message");
  EXPECT_THAT(syslog.receive(), testing::AllOf(StartsWith("<14>"), HasSubstr("program/mine[")));
}

TEST_F(LinuxSystemLog, CutsWhatIsTooLongForTheOlderProtocol) {
  const SystemLogListener syslog(syslogPath_);
  open()->log(5, std::string(1000000, 'm'));
  EXPECT_GT(syslog.receive().size(), 10000U);
}

TEST_F(LinuxSystemLog, PrefersTheJournal) {
  const SystemLogListener journal(journalPath_);
  const SystemLogListener syslog(syslogPath_);
  open()->log(5, "x");
  EXPECT_TRUE(journal.hasDatagram());
  EXPECT_FALSE(syslog.hasDatagram());
}

TEST_F(LinuxSystemLog, NeverHangsOnALogThatTakesNothing) {
  const SystemLogListener journal(journalPath_);
  const auto client = open();
  // More than the queue of a socket that nobody reads.
  const std::string message(150000, 'm');
  for (int count = 0; count < 3; ++count) client->log(5, message);
  EXPECT_EQ(journalFields(journal.receive())["MESSAGE"], message);
}

TEST_F(LinuxSystemLog, ClosesItsSocket) {
  const SystemLogListener journal(journalPath_);
  const int before = dup(STDERR_FILENO);
  close(before);
  open().reset();
  const int after = dup(STDERR_FILENO);
  close(after);
  EXPECT_EQ(before, after);
}

TEST_F(LinuxSystemLog, CannotBeOpenedAtAPathThatIsTooLong) {
  const std::string path = "/tmp/" + std::string(200, 'x');
  EXPECT_EQ(openSystemLogAt({path, path}, std::nullopt, "program"), nullptr);
}

}  // namespace
}  // namespace vornix
