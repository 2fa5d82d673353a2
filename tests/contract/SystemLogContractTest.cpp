#include "platform/system/SystemLog.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "platform/linux/system/SystemLogSockets.h"
#include "tests/fakes/FakeSystemLog.h"
#include "tests/support/ScratchFolder.h"
#include "tests/support/SystemLogListener.h"

namespace vornix {
namespace {

using testing::ElementsAre;
using tests::journalFields;
using tests::SystemLogListener;

struct Record {
  std::string facility;
  int priority = 0;
  std::string message;
  friend bool operator==(const Record&, const Record&) = default;
};

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
    return openSystemLogAt({folder_.path("journal"), folder_.path("log")}, facility, "program");
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
  tests::ScratchFolder folder_;
  std::unique_ptr<SystemLogListener> listener_ =
      std::make_unique<SystemLogListener>(folder_.path("journal"));
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

}  // namespace
}  // namespace vornix
