#include "logging/GTMLogASLWriter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <mutex>
#include <thread>

#include "tests/fakes/FakeSystemLog.h"

namespace vornix {
namespace {

using testing::ElementsAre;

// What a substituted client class saw. Any thread.
struct Journal {
  std::mutex mutex;
  std::vector<std::optional<std::string>> made;
  std::vector<std::pair<std::string, int>> logged;
  int alive = 0;
};

class RecordingClient final : public GTMLoggerASLClient {
 public:
  explicit RecordingClient(Journal& journal) : journal_(journal) {
    const std::lock_guard lock(journal_.mutex);
    ++journal_.alive;
  }
  ~RecordingClient() override {
    const std::lock_guard lock(journal_.mutex);
    --journal_.alive;
  }
  void log(std::string_view message, int level) override {
    const std::lock_guard lock(journal_.mutex);
    journal_.logged.emplace_back(message, level);
  }

 private:
  Journal& journal_;
};

class GTMLogASLWriterTest : public testing::Test {
 protected:
  [[nodiscard]] GTMLogASLWriter::ClientClass clientClass() {
    return [this](const std::optional<std::string>& facility) {
      {
        const std::lock_guard lock(journal_.mutex);
        journal_.made.push_back(facility);
      }
      return available_ ? std::make_shared<RecordingClient>(journal_) : nullptr;
    };
  }
  // Clients live as long as their thread.
  template <typename Action>
  static void onFreshThread(const Action& action) {
    std::thread(action).join();
  }

  Journal journal_;
  bool available_ = true;
};

TEST_F(GTMLogASLWriterTest, MapsLevelsToThePrioritiesOfTheSystemsLog) {
  onFreshThread([this] {
    GTMLogASLWriter writer(clientClass());
    for (const LogLevel level : {0, 1, 2, 3, 4, 5, 7, -1, INT32_MIN, INT32_MAX}) {
      writer.logMessage(std::to_string(level), level);
    }
  });
  EXPECT_THAT(
      journal_.logged,
      ElementsAre(std::pair("0", 5), std::pair("1", 5), std::pair("2", 5), std::pair("3", 3),
                  std::pair("4", 1), std::pair("5", 6), std::pair("7", 6), std::pair("-1", 6),
                  std::pair("-2147483648", 6), std::pair("2147483647", 6)));
}

TEST_F(GTMLogASLWriterTest, MakesOneClientForEachFacilityOfAThread) {
  onFreshThread([this] {
    GTMLogASLWriter plain(clientClass());
    GTMLogASLWriter first(clientClass(), "first");
    GTMLogASLWriter second(clientClass(), "second");
    GTMLogASLWriter again(clientClass(), "first");
    for (int round = 0; round < 3; ++round) {
      for (auto* writer : {&plain, &first, &second, &again}) writer->logMessage("x", 3);
    }
  });
  EXPECT_THAT(journal_.made, ElementsAre(std::nullopt, "first", "second"));
  EXPECT_EQ(journal_.logged.size(), 12U);
}

TEST_F(GTMLogASLWriterTest, GivesEachThreadItsOwnClientForTheLifeOfTheThread) {
  GTMLogASLWriter writer(clientClass());
  for (int thread = 0; thread < 2; ++thread) {
    onFreshThread([&] {
      writer.logMessage("x", 3);
      writer.logMessage("y", 3);
      EXPECT_EQ(journal_.alive, 1);
    });
    EXPECT_EQ(journal_.alive, 0);
  }
  EXPECT_EQ(journal_.made.size(), 2U);
}

TEST_F(GTMLogASLWriterTest, SharesAThreadsClientWithWritersOfAnotherClass) {
  onFreshThread([this] {
    GTMLogASLWriter(clientClass(), "shared").logMessage("x", 3);
    GTMLogASLWriter::aslWriterWithFacility("shared")->logMessage("y", 3);
  });
  EXPECT_THAT(journal_.logged, ElementsAre(std::pair("x", 3), std::pair("y", 3)));
}

TEST_F(GTMLogASLWriterTest, TellsNoFacilityFromAnEmptyOne) {
  onFreshThread([this] {
    GTMLogASLWriter(clientClass()).logMessage("x", 3);
    GTMLogASLWriter(clientClass(), "").logMessage("x", 3);
  });
  EXPECT_THAT(journal_.made, ElementsAre(std::nullopt, ""));
}

TEST_F(GTMLogASLWriterTest, LosesMessagesWhileThereIsNoClientAndTriesAgain) {
  onFreshThread([this] {
    GTMLogASLWriter writer(clientClass());
    available_ = false;
    EXPECT_NO_THROW(writer.logMessage("lost", 3));
    available_ = true;
    writer.logMessage("kept", 3);
  });
  EXPECT_THAT(journal_.logged, ElementsAre(std::pair("kept", 3)));
  EXPECT_EQ(journal_.made.size(), 2U);
}

TEST_F(GTMLogASLWriterTest, LogsFromManyThreadsAtOnce) {
  GTMLogASLWriter writer(clientClass());
  std::vector<std::thread> threads;
  for (int thread = 0; thread < 4; ++thread) {
    threads.emplace_back([&] {
      for (int count = 0; count < 100; ++count) writer.logMessage("x", 3);
    });
  }
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(journal_.made.size(), 4U);
  EXPECT_EQ(journal_.logged.size(), 400U);
}

TEST(GTMLoggerASLClient, LogsWithItsFacilityAndClosesItsClient) {
  auto& log = fakes::processSystemLog();
  const auto recordsBefore = log.records().size();
  const int openBefore = log.openClients();
  auto client = GTMLoggerASLClient::createWithFacility("mine");
  ASSERT_NE(client, nullptr);
  client->log("100% x", 3);
  EXPECT_EQ(log.openClients(), openBefore + 1);
  client.reset();
  EXPECT_EQ(log.openClients(), openBefore);
  ASSERT_EQ(log.records().size(), recordsBefore + 1);
  EXPECT_EQ(log.records().back().facility, "mine");
  EXPECT_EQ(log.records().back().priority, 3);
  EXPECT_EQ(log.records().back().message, "100% x");
}

TEST(GTMLoggerASLClient, IsNullWhenTheSystemsLogCannotBeReached) {
  fakes::processSystemLog().setReachable(false);
  EXPECT_EQ(GTMLoggerASLClient::createWithFacility(std::nullopt), nullptr);
  fakes::processSystemLog().setReachable(true);
}

TEST(GTMLogASLWriter, UsesTheSystemsLogUnlessToldOtherwise) {
  std::thread([] {
    GTMLogASLWriter::aslWriter()->logMessage("plain", 3);
    GTMLogASLWriter::aslWriterWithFacility("daemon")->logMessage("marked", 4);
  }).join();
  const auto records = fakes::processSystemLog().records();
  ASSERT_GE(records.size(), 2U);
  EXPECT_EQ(records.at(records.size() - 2).facility, std::nullopt);
  EXPECT_EQ(records.at(records.size() - 2).message, "plain");
  EXPECT_EQ(records.back().facility, "daemon");
  EXPECT_EQ(records.back().priority, 1);
}

}  // namespace
}  // namespace vornix
