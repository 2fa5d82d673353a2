#include "platform/desktop/NotificationServer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <set>
#include <string>
#include <vector>

#include "tests/contract/support/NotificationDaemon.h"
#include "tests/fakes/FakeNotificationServer.h"
#include "tests/support/PrivateBus.h"

namespace vornix::contract {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

constexpr double kGenerous = 60;
constexpr const char* kName = "plain server";
constexpr const char* kReason = "not now";
const std::vector<std::string> kCapabilities{"actions", "body-markup"};

const NotificationPost kPost{.applicationName = "Vornix",
                             .desktopEntry = "com.orvane.Vornix3.Scheduler",
                             .summary = "Time to clean up",
                             .body = "Scan now",
                             .actions = {{"default", "Launch"}, {"cancel", "Cancel"}}};

class FakeDesktop {
 public:
  FakeDesktop() { server_.description = {.name = kName, .capabilities = kCapabilities}; }

  NotificationServer& server() { return server_; }
  void appear() { server_.changeOwner(":1.5"); }
  void leave() { server_.changeOwner(""); }
  void click(std::uint32_t identifier, const std::string& key, const std::string& token) {
    server_.click(identifier, key, token);
  }
  void dismiss(std::uint32_t identifier) { server_.dismiss(identifier); }
  void refuseNext() { server_.nextResults = {{PostOutcome::refused, 0, kReason}}; }
  void findNextRepeated() { server_.nextResults = {{PostOutcome::repeatedTooSoon, 0, kReason}}; }
  std::vector<NotificationPost> shown() {
    std::vector<NotificationPost> posts;
    for (const auto& posted : server_.posted) posts.push_back(posted.notification);
    return posts;
  }
  std::vector<std::uint32_t> closed() {
    std::vector<std::uint32_t> identifiers;
    for (const auto& [owner, identifier] : server_.closed) identifiers.push_back(identifier);
    return identifiers;
  }
  bool runUntil(const std::function<bool()>& done) {
    server_.answerAll();
    return done();
  }

 private:
  fakes::FakeNotificationServer server_;
};

class RealDesktop {
 public:
  RealDesktop() = default;
  ~RealDesktop() {
    bus_.stop();
    EXPECT_TRUE(runUntil([] { return !SessionBus::shared().isConnected(); }));
  }
  RealDesktop(const RealDesktop&) = delete;
  RealDesktop& operator=(const RealDesktop&) = delete;

  NotificationServer& server() { return sharedNotificationServer(); }
  void appear() { daemon_ = std::make_unique<NotificationDaemon>(kName, kCapabilities); }
  void leave() { daemon_.reset(); }
  void click(std::uint32_t identifier, const std::string& key, const std::string& token) {
    daemon_->act(identifier, key, token);
  }
  void dismiss(std::uint32_t identifier) { daemon_->end(identifier); }
  void refuseNext() { daemon_->refusals = {"org.example.Error.Unwilling"}; }
  void findNextRepeated() {
    daemon_->refusals = {"org.freedesktop.Notifications.Error.ExcessNotificationGeneration"};
  }
  std::vector<NotificationPost> shown() {
    std::vector<NotificationPost> posts;
    for (const auto& [identifier, each] : daemon_->shown) posts.push_back(asPosted(each));
    return posts;
  }
  std::vector<std::uint32_t> closed() { return daemon_->closed; }
  bool runUntil(const std::function<bool()>& done) {
    return NSRunLoop::mainRunLoop()->runUntil(done, kGenerous);
  }

 private:
  static NotificationPost asPosted(const NotificationDaemon::Shown& shown) {
    const Value* const entry = shown.hints.find("desktop-entry");
    NotificationPost post{.applicationName = shown.applicationName,
                          .desktopEntry = entry != nullptr ? entry->description() : "",
                          .summary = shown.summary,
                          .body = shown.body,
                          .actions = {}};
    for (std::size_t each = 0; each + 1 < shown.actions.size(); each += 2) {
      post.actions.push_back({shown.actions[each], shown.actions[each + 1]});
    }
    return post;
  }

  tests::PrivateBus bus_;
  std::unique_ptr<NotificationDaemon> daemon_;
};

// Writes down what it is told, and who said it.
class Diary final : public NotificationServerObserver {
 public:
  void ownerChanged(std::string_view owner) override { owners.emplace_back(owner); }
  void activationTokenArrived(std::string_view sender, std::uint32_t identifier,
                              std::string_view token) override {
    note(sender, "token", identifier, token);
  }
  void actionInvoked(std::string_view sender, std::uint32_t identifier,
                     std::string_view key) override {
    note(sender, "action", identifier, key);
  }
  void notificationClosed(std::string_view sender, std::uint32_t identifier) override {
    note(sender, "closed", identifier, "");
  }

  std::vector<std::string> owners;
  std::vector<std::string> events;
  std::set<std::string> senders;

 private:
  void note(std::string_view sender, const std::string& what, std::uint32_t identifier,
            std::string_view detail) {
    senders.emplace(sender);
    events.push_back(what + " " + std::to_string(identifier) + " " + std::string(detail));
  }
};

template <typename Desktop>
class NotificationServerContract : public testing::Test {
 protected:
  NotificationServerContract() { server_.setObserver(&diary_); }
  ~NotificationServerContract() override { server_.setObserver(nullptr); }

  bool runUntil(const std::function<bool()>& done) { return desktop_.runUntil(done); }
  std::string owner() {
    std::optional<std::string> found;
    server_.findOwner([&](std::string_view owner) { found = owner; });
    EXPECT_TRUE(runUntil([&] { return found.has_value(); }));
    return found.value_or("no answer");
  }
  // None also when no answer came, which is a failure.
  std::optional<NotificationServerDescription> describe(const std::string& owner) {
    bool answered = false;
    std::optional<NotificationServerDescription> description;
    server_.describe(owner, [&](const auto& answer) {
      answered = true;
      description = answer;
    });
    EXPECT_TRUE(runUntil([&] { return answered; }));
    return description;
  }
  PostResult post(const std::string& owner) {
    std::optional<PostResult> result;
    server_.post(owner, kPost, [&](const PostResult& answer) { result = answer; });
    EXPECT_FALSE(result) << "answered from inside the operation";
    EXPECT_TRUE(runUntil([&] { return result.has_value(); }));
    return result.value_or(PostResult{});
  }
  // The server there now.
  std::string appear() {
    desktop_.appear();
    return owner();
  }

  Diary diary_;
  Desktop desktop_;
  NotificationServer& server_ = desktop_.server();
};

using Desktops = testing::Types<FakeDesktop, RealDesktop>;
TYPED_TEST_SUITE(NotificationServerContract, Desktops);

TYPED_TEST(NotificationServerContract, FindsNobodyOnADesktopWithoutServer) {
  EXPECT_EQ(this->owner(), "");
}

TYPED_TEST(NotificationServerContract, FindsWhoeverIsTheServer) {
  EXPECT_THAT(this->appear(), Not(IsEmpty()));
}

TYPED_TEST(NotificationServerContract, HearsOfNobodyWhenThereIsNoServerToStart) {
  this->server_.start();
  EXPECT_EQ(this->owner(), "");
  EXPECT_THAT(this->diary_.owners, IsEmpty());
}

TYPED_TEST(NotificationServerContract, DescribesTheServersNameAndCapabilities) {
  const auto description = this->describe(this->appear());
  ASSERT_TRUE(description);
  EXPECT_EQ(description->name, kName);
  EXPECT_EQ(description->capabilities, kCapabilities);
}

TYPED_TEST(NotificationServerContract, DescribesNoServerThatIsGone) {
  const std::string owner = this->appear();
  this->desktop_.leave();
  EXPECT_FALSE(this->describe(owner));
}

TYPED_TEST(NotificationServerContract, HasTheServerShowWhatIsPosted) {
  const PostResult result = this->post(this->appear());
  EXPECT_EQ(result.outcome, PostOutcome::shown);
  EXPECT_NE(result.identifier, 0U);
  EXPECT_THAT(this->desktop_.shown(), ElementsAre(kPost));
}

TYPED_TEST(NotificationServerContract, NamesEveryNotificationDifferently) {
  const std::string owner = this->appear();
  EXPECT_NE(this->post(owner).identifier, this->post(owner).identifier);
}

TYPED_TEST(NotificationServerContract, SaysThatTheServerIsGone) {
  const std::string owner = this->appear();
  this->desktop_.leave();
  EXPECT_EQ(this->post(owner).outcome, PostOutcome::serverGone);
}

TYPED_TEST(NotificationServerContract, SaysWhyTheServerRefused) {
  const std::string owner = this->appear();
  this->desktop_.refuseNext();
  const PostResult result = this->post(owner);
  EXPECT_EQ(result.outcome, PostOutcome::refused);
  EXPECT_EQ(result.reason, kReason);
}

TYPED_TEST(NotificationServerContract, SaysThatTheServerTakesAPostForARepetition) {
  const std::string owner = this->appear();
  this->desktop_.findNextRepeated();
  EXPECT_EQ(this->post(owner).outcome, PostOutcome::repeatedTooSoon);
}

TYPED_TEST(NotificationServerContract, ClosesTheNotificationNamed) {
  const std::string owner = this->appear();
  this->post(owner);
  const auto second = this->post(owner).identifier;
  this->server_.close(owner, second);
  EXPECT_TRUE(this->runUntil([this] { return !this->desktop_.closed().empty(); }));
  EXPECT_THAT(this->desktop_.closed(), ElementsAre(second));
}

TYPED_TEST(NotificationServerContract, TellsWhenAServerComesAndGoes) {
  const std::string owner = this->appear();
  EXPECT_TRUE(this->runUntil([this] { return this->diary_.owners.size() == 1; }));
  this->desktop_.leave();
  EXPECT_TRUE(this->runUntil([this] { return this->diary_.owners.size() == 2; }));
  EXPECT_THAT(this->diary_.owners, ElementsAre(owner, ""));
}

TYPED_TEST(NotificationServerContract, TellsOfTheTokenTheActionAndTheClosingInOrder) {
  const std::string owner = this->appear();
  const auto identifier = this->post(owner).identifier;
  this->desktop_.click(identifier, "default", "proof");
  this->desktop_.dismiss(identifier);
  EXPECT_TRUE(this->runUntil([this] { return this->diary_.events.size() == 3; }));
  const std::string number = std::to_string(identifier);
  EXPECT_THAT(this->diary_.events,
              ElementsAre("token " + number + " proof", "action " + number + " default",
                          "closed " + number + " "));
  EXPECT_THAT(this->diary_.senders, ElementsAre(owner));
}

TYPED_TEST(NotificationServerContract, TellsNothingOnceTheObserverWasRemoved) {
  const std::string owner = this->appear();
  const auto identifier = this->post(owner).identifier;
  this->server_.setObserver(nullptr);
  const auto ownersBefore = this->diary_.owners;
  this->desktop_.click(identifier, "default", "proof");
  this->desktop_.dismiss(identifier);
  // Its answer would come after all that.
  EXPECT_TRUE(this->describe(owner));
  this->desktop_.leave();
  EXPECT_EQ(this->owner(), "");
  EXPECT_THAT(this->diary_.events, IsEmpty());
  EXPECT_EQ(this->diary_.owners, ownersBefore);
}

}  // namespace
}  // namespace vornix::contract
