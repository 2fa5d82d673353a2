#include "platform/system/SystemLog.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cstring>
#include <filesystem>
#include <map>
#include <vector>

#include "platform/linux/system/SystemLogSockets.h"
#include "tests/fakes/FakeSystemLog.h"

namespace vornix {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

struct Record {
  std::string facility;
  int priority = 0;
  std::string message;
  friend bool operator==(const Record&, const Record&) = default;
};

// A datagram socket as the log's service has it.
class Listener {
 public:
  explicit Listener(const std::string& path) {
    descriptor_ = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof(address.sun_path) - 1);
    unlink(path.c_str());
    EXPECT_EQ(bind(descriptor_, reinterpret_cast<sockaddr*>(&address), sizeof(address)), 0) << path;
  }
  Listener(const Listener&) = delete;
  Listener& operator=(const Listener&) = delete;
  ~Listener() { close(descriptor_); }

  [[nodiscard]] bool hasDatagram() const {
    pollfd entry{descriptor_, POLLIN, 0};
    return poll(&entry, 1, 0) == 1;
  }

  // The next datagram, or the contents of the file that came with it.
  [[nodiscard]] std::string receive() const {
    std::vector<char> buffer(1U << 20U);
    iovec part{buffer.data(), buffer.size()};
    alignas(cmsghdr) std::array<char, 256> control{};
    msghdr message{};
    message.msg_iov = &part;
    message.msg_iovlen = 1;
    message.msg_control = control.data();
    message.msg_controllen = control.size();
    const auto length = recvmsg(descriptor_, &message, MSG_DONTWAIT);
    if (length < 0) return "nothing was received";
    const cmsghdr* header = CMSG_FIRSTHDR(&message);
    if (header == nullptr) return {buffer.data(), static_cast<std::size_t>(length)};
    int file = -1;
    std::memcpy(&file, CMSG_DATA(header), sizeof(file));
    sealed_ =
        fcntl(file, F_GET_SEALS) == (F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_WRITE | F_SEAL_SEAL);
    std::string contents(static_cast<std::size_t>(lseek(file, 0, SEEK_END)), '\0');
    EXPECT_EQ(pread(file, contents.data(), contents.size(), 0),
              static_cast<ssize_t>(contents.size()));
    close(file);
    return contents;
  }

  [[nodiscard]] bool lastWasSealed() const { return sealed_; }

 private:
  int descriptor_ = -1;
  mutable bool sealed_ = false;
};

class LogFolder {
 public:
  LogFolder() { path_ = mkdtemp(path_.data()); }
  LogFolder(const LogFolder&) = delete;
  LogFolder& operator=(const LogFolder&) = delete;
  ~LogFolder() { std::filesystem::remove_all(path_); }
  [[nodiscard]] SystemLogSockets sockets() const { return {path_ + "/journal", path_ + "/log"}; }

 private:
  std::string path_ = std::filesystem::temp_directory_path() / "vornix-log-XXXXXX";
};

// The fields of a record of the journal.
std::map<std::string, std::string> journalFields(std::string_view record) {
  std::map<std::string, std::string> fields;
  while (!record.empty()) {
    const auto end = record.find_first_of("=\n");
    const std::string name(record.substr(0, end));
    const bool counted = record.at(end) == '\n';
    record.remove_prefix(end + 1);
    std::size_t length = record.find('\n');
    if (counted) {
      std::memcpy(&length, record.data(), 8);
      record.remove_prefix(8);
    }
    fields[name] = record.substr(0, length);
    EXPECT_EQ(record.at(length), '\n');
    record.remove_prefix(length + 1);
  }
  return fields;
}

class LogBackend {
 public:
  virtual ~LogBackend() = default;
  virtual std::unique_ptr<SystemLogClient> open(const std::optional<std::string>& facility) = 0;
  virtual std::vector<Record> records() = 0;
  virtual void becomeUnreachable() = 0;
};

class FakeBackend final : public LogBackend {
 public:
  std::unique_ptr<SystemLogClient> open(const std::optional<std::string>& facility) override {
    return log_.open(facility);
  }
  std::vector<Record> records() override {
    std::vector<Record> records;
    for (const auto& record : log_.records()) {
      records.push_back({record.facility.value_or(""), record.priority, record.message});
    }
    return records;
  }
  void becomeUnreachable() override { log_.setReachable(false); }

 private:
  fakes::FakeSystemLog log_;
};

class JournalBackend final : public LogBackend {
 public:
  std::unique_ptr<SystemLogClient> open(const std::optional<std::string>& facility) override {
    return openSystemLogAt(folder_.sockets(), facility, "program");
  }
  std::vector<Record> records() override {
    while (listener_ && listener_->hasDatagram()) {
      auto fields = journalFields(listener_->receive());
      records_.push_back({fields["FACILITY"], std::stoi(fields["PRIORITY"]), fields["MESSAGE"]});
    }
    return records_;
  }
  void becomeUnreachable() override { listener_.reset(); }

 private:
  LogFolder folder_;
  std::unique_ptr<Listener> listener_ = std::make_unique<Listener>(folder_.sockets().journal);
  std::vector<Record> records_;
};

template <typename Backend>
class SystemLogContract : public testing::Test {
 protected:
  Backend backend_;
};

using Backends = testing::Types<FakeBackend, JournalBackend>;
TYPED_TEST_SUITE(SystemLogContract, Backends);

TYPED_TEST(SystemLogContract, RecordsMessagesWithTheirPriorityInOrder) {
  const auto client = this->backend_.open(std::nullopt);
  ASSERT_NE(client, nullptr);
  client->log(1, "alert");
  client->log(3, "error");
  client->log(5, "");
  client->log(6, "two\nlines \xC3\xA4");
  EXPECT_THAT(this->backend_.records(),
              ElementsAre(Record{"", 1, "alert"}, Record{"", 3, "error"}, Record{"", 5, ""},
                          Record{"", 6, "two\nlines \xC3\xA4"}));
}

TYPED_TEST(SystemLogContract, KeepsTheFacilitiesOfSeveralClientsApart) {
  const auto first = this->backend_.open("com.orvane.first");
  const auto second = this->backend_.open("com.orvane.second");
  second->log(5, "b");
  first->log(5, "a");
  EXPECT_THAT(this->backend_.records(),
              ElementsAre(Record{"com.orvane.second", 5, "b"}, Record{"com.orvane.first", 5, "a"}));
}

TYPED_TEST(SystemLogContract, CannotBeOpenedWhileTheLogIsUnreachable) {
  this->backend_.becomeUnreachable();
  EXPECT_EQ(this->backend_.open(std::nullopt), nullptr);
}

TYPED_TEST(SystemLogContract, LosesMessagesQuietlyWhenTheLogGoesAway) {
  const auto client = this->backend_.open(std::nullopt);
  client->log(5, "kept");
  EXPECT_EQ(this->backend_.records().size(), 1U);
  this->backend_.becomeUnreachable();
  client->log(5, "lost");
  client->log(5, "lost");
  EXPECT_EQ(this->backend_.records().size(), 1U);
}

class LinuxSystemLog : public testing::Test {
 protected:
  [[nodiscard]] std::unique_ptr<SystemLogClient> open(
      const std::optional<std::string>& facility = std::nullopt) const {
    return openSystemLogAt(folder_.sockets(), facility, "program");
  }
  LogFolder folder_;
};

TEST_F(LinuxSystemLog, MarksRecordsOfTheJournalWithTheirOrigin) {
  const Listener journal(folder_.sockets().journal);
  open()->log(3, "x");
  auto fields = journalFields(journal.receive());
  EXPECT_EQ(fields["SYSLOG_IDENTIFIER"], "program");
  EXPECT_EQ(fields["SYSLOG_PID"], std::to_string(getpid()));
  EXPECT_EQ(fields["SYSLOG_FACILITY"], "1");
  EXPECT_FALSE(fields.contains("FACILITY"));
}

TEST_F(LinuxSystemLog, KnowsTheNumbersOfTheLogsOwnFacilities) {
  const Listener journal(folder_.sockets().journal);
  const std::vector<std::pair<std::string, std::string>> table{
      {"user", "1"}, {"daemon", "3"}, {"local7", "23"}, {"kern", "1"}, {"", "1"}, {"mine", "1"}};
  for (const auto& [facility, number] : table) {
    open(facility)->log(5, "x");
    EXPECT_EQ(journalFields(journal.receive())["SYSLOG_FACILITY"], number) << facility;
  }
}

TEST_F(LinuxSystemLog, CannotBeFooledByLineEndsInAFacility) {
  const Listener journal(folder_.sockets().journal);
  open("a\nMESSAGE=forged")->log(5, "true");
  auto fields = journalFields(journal.receive());
  EXPECT_EQ(fields["MESSAGE"], "true");
  EXPECT_EQ(fields["FACILITY"], "a\nMESSAGE=forged");
}

TEST_F(LinuxSystemLog, EndsAMessageAtItsFirstNullByte) {
  const Listener journal(folder_.sockets().journal);
  open()->log(5, std::string_view("a\0b", 3));
  EXPECT_EQ(journalFields(journal.receive())["MESSAGE"], "a");
}

TEST_F(LinuxSystemLog, SendsWhatIsTooLongForADatagramAsASealedFile) {
  const Listener journal(folder_.sockets().journal);
  const std::string message(1000000, 'm');
  open()->log(5, message);
  EXPECT_EQ(journalFields(journal.receive())["MESSAGE"], message);
  EXPECT_TRUE(journal.lastWasSealed());
}

TEST_F(LinuxSystemLog, FindsAJournalThatWasStartedAnew) {
  auto journal = std::make_unique<Listener>(folder_.sockets().journal);
  const auto client = open();
  journal.reset();
  journal = std::make_unique<Listener>(folder_.sockets().journal);
  client->log(5, "again");
  EXPECT_EQ(journalFields(journal->receive())["MESSAGE"], "again");
}

TEST_F(LinuxSystemLog, UsesTheOlderProtocolWhereThereIsNoJournal) {
  const Listener syslog(folder_.sockets().syslog);
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
  const Listener syslog(folder_.sockets().syslog);
  open()->log(5, std::string(1000000, 'm'));
  EXPECT_GT(syslog.receive().size(), 10000U);
}

TEST_F(LinuxSystemLog, PrefersTheJournal) {
  const Listener journal(folder_.sockets().journal);
  const Listener syslog(folder_.sockets().syslog);
  open()->log(5, "x");
  EXPECT_TRUE(journal.hasDatagram());
  EXPECT_FALSE(syslog.hasDatagram());
}

TEST_F(LinuxSystemLog, NeverHangsOnALogThatTakesNothing) {
  const Listener journal(folder_.sockets().journal);
  const auto client = open();
  // More than the queue of a socket that nobody reads.
  const std::string message(150000, 'm');
  for (int count = 0; count < 3; ++count) client->log(5, message);
  EXPECT_EQ(journalFields(journal.receive())["MESSAGE"], message);
}

TEST_F(LinuxSystemLog, ClosesItsSocket) {
  const Listener journal(folder_.sockets().journal);
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
