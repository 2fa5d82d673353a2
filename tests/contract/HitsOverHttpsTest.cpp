#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <set>
#include <string>
#include <vector>

#include "analytics/VXAnalyticsTracker.h"
#include "platform/runloop/NSRunLoop.h"
#include "tests/support/HttpsServer.h"
#include "tests/support/Journal.h"
#include "tests/support/ScratchFolder.h"

namespace vornix {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

using tests::Journal;

constexpr double kGenerous = 60;

// The real client, its requests noted by their number.
class NotingClient final : public HttpClient {
 public:
  NotingClient(Journal& journal, std::unique_ptr<HttpClient> client)
      : journal_(journal), client_(std::move(client)) {}
  [[nodiscard]] HttpResponse send(const HttpRequest& request) override {
    const auto number = std::to_string(++requests_);
    journal_.note("start " + number);
    auto response = client_->send(request);
    journal_.note("end " + number + (response.error ? " " + response.error->description() : ""));
    return response;
  }

 private:
  Journal& journal_;
  const std::unique_ptr<HttpClient> client_;
  int requests_ = 0;
};

// Apart from the process's tracker, and as short-lived as its test.
class LooseTracker final : public VXAnalyticsTracker {
 public:
  explicit LooseTracker(AnalyticsServices services) : VXAnalyticsTracker(std::move(services)) {}
  using VXAnalyticsTracker::setUp;
};

// A tracker on the process's own services in a home of its own; only the server is the test's.
class HitsOverHttps : public testing::Test {
 protected:
  HitsOverHttps() {
    setenv("HOME", home_.path().c_str(), 1);
    for (const char* name : {"DISPLAY", "https_proxy", "HTTPS_PROXY", "all_proxy", "ALL_PROXY"}) {
      unsetenv(name);
    }
  }

  [[nodiscard]] std::shared_ptr<VXAnalyticsTracker> trackerOf(const tests::HttpsServer& server) {
    return trackerOf(server, server.certificateFile());
  }

  [[nodiscard]] std::shared_ptr<VXAnalyticsTracker> trackerOf(const tests::HttpsServer& server,
                                                              const std::string& authority) {
    auto services = processAnalyticsServices();
    services.loadConfiguration = [&server, authority] {
      return AnalyticsConfiguration{.collectionHost = server.host(),
                                    .productionIdentifier = "main",
                                    .backupIdentifier = "backup",
                                    .categoryIdentifiers = {{"Scheduler", "category"}},
                                    .certificateAuthorityFile = authority};
    };
    services.makeHttpClient = [this](std::string file) -> std::unique_ptr<HttpClient> {
      return std::make_unique<NotingClient>(journal_, makeHttpClient(std::move(file)));
    };
    services.dispatchOnMainQueue = [this](std::function<void()> completion) {
      dispatchAsyncOnMainQueue(
          [this, completion = std::move(completion)] { complete(completion); });
    };
    auto tracker = std::make_shared<LooseTracker>(std::move(services));
    tracker->setUp();
    return tracker;
  }

  void complete(const std::function<void()>& completion) {
    journal_.note(isMainThread() ? "completion" : "completion on a worker");
    ++completions_;
    completion();
  }

  [[nodiscard]] bool runUntilCompletions(int count) {
    return NSRunLoop::mainRunLoop()->runUntil([&] { return completions_ >= count; }, kGenerous);
  }

  [[nodiscard]] static std::vector<std::string> targetsAndActions(
      const std::vector<tests::HttpsServer::Hit>& hits) {
    std::vector<std::string> result;
    for (const auto& hit : hits) {
      const auto value = [&](const std::string& parameter) {
        const auto start = hit.uri.find("&" + parameter + "=") + parameter.size() + 2;
        return hit.uri.substr(start, hit.uri.find('&', start) - start);
      };
      result.push_back(value("tid") + " " + value("ea"));
    }
    return result;
  }

  [[nodiscard]] static std::size_t connectionsOf(const std::vector<tests::HttpsServer::Hit>& hits) {
    std::set<std::uint64_t> connections;
    for (const auto& hit : hits) connections.insert(hit.connection);
    return connections.size();
  }

  const tests::ScratchFolder home_;
  Journal journal_;
  int completions_ = 0;
};

TEST_F(HitsOverHttps, ArriveOneAtATimeInOrderOverOneConnection) {
  const tests::HttpsServer server;
  const auto tracker = trackerOf(server);
  tracker->trackEventWithParameters({{"ec", "Scheduler"}, {"ea", "Shown"}});
  tracker->trackEventWithParameters({{"ec", "Scheduler"}, {"ea", "Clicked"}});
  ASSERT_TRUE(runUntilCompletions(6));
  const auto hits = server.waitForHits(6);
  EXPECT_THAT(targetsAndActions(hits),
              ElementsAre("main Shown", "category Shown", "backup Shown", "main Clicked",
                          "category Clicked", "backup Clicked"));
  EXPECT_EQ(connectionsOf(hits), 1U);
  for (const auto& hit : hits) {
    EXPECT_EQ(hit.status, 200);
    EXPECT_EQ(hit.method, "GET");
    EXPECT_EQ(hit.userAgent, tracker->userAgentString());
    EXPECT_THAT(hit.uri, testing::StartsWith("/collect?v=1&tid="));
    EXPECT_THAT(hit.uri, EndsWith(tracker->systemInfo()));
  }
}

TEST_F(HitsOverHttps, StartNoRequestBeforeTheOneBeforeHasCompletedOnTheMainThread) {
  const tests::HttpsServer server;
  const auto tracker = trackerOf(server);
  tracker->trackEventWithParameters({{"ea", "first"}});
  tracker->trackEventWithParameters({{"ea", "second"}});
  // The server has answered, but nothing serves the main thread yet.
  EXPECT_THAT(server.waitForHits(1), SizeIs(1));
  EXPECT_TRUE(tracker->sendingLock()->boolValue());
  EXPECT_EQ(journal_.events().front(), "start 1");
  ASSERT_TRUE(runUntilCompletions(4));
  EXPECT_THAT(journal_.events(),
              ElementsAre("start 1", "end 1", "completion", "start 2", "end 2", "completion",
                          "start 3", "end 3", "completion", "start 4", "end 4", "completion"));
  EXPECT_FALSE(tracker->sendingLock()->boolValue());
}

TEST_F(HitsOverHttps, GoOnInOrderWhereTheServerFailsAndClosesTheConnection) {
  const tests::HttpsServer server({.status = 500});
  const auto tracker = trackerOf(server);
  tracker->trackEventWithParameters({{"ea", "first"}});
  tracker->trackEventWithParameters({{"ea", "second"}});
  ASSERT_TRUE(runUntilCompletions(4));
  EXPECT_THAT(targetsAndActions(server.waitForHits(4)),
              ElementsAre("main first", "backup first", "main second", "backup second"));
}

TEST_F(HitsOverHttps, CompleteAndReachNobodyWhereTheServerCannotBeTrusted) {
  const tests::HttpsServer server;
  const tests::HttpsServer stranger;
  const auto tracker = trackerOf(server, stranger.certificateFile());
  tracker->trackEventWithParameters({{"ea", "lost"}});
  ASSERT_TRUE(runUntilCompletions(2));
  EXPECT_THAT(journal_.events(), ElementsAre("start 1", HasSubstr("Code=-1202"), "completion",
                                             "start 2", HasSubstr("Code=-1202"), "completion"));
  EXPECT_THAT(server.hits(), IsEmpty());
  EXPECT_FALSE(tracker->sendingLock()->boolValue());
}

TEST_F(HitsOverHttps, AreOnTheWireBeforeASynchronousCallReturns) {
  const tests::HttpsServer server;
  const auto tracker = trackerOf(server);
  tracker->trackSynchronouslyEventWithParameters({{"ec", "Scheduler"}, {"ea", "now"}});
  EXPECT_THAT(journal_.events(),
              ElementsAre("start 1", "end 1", "start 2", "end 2", "start 3", "end 3"));
  EXPECT_THAT(targetsAndActions(server.waitForHits(3)),
              ElementsAre("main now", "category now", "backup now"));
}

}  // namespace
}  // namespace vornix
