#include "platform/desktop/ActivationReceiver.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <deque>
#include <memory>
#include <string>
#include <vector>

#include "platform/linux/desktop/BusNames.h"
#include "tests/fakes/FakeActivationReceiver.h"
#include "tests/support/PrivateBus.h"

namespace vornix::contract {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

constexpr double kGenerous = 60;
constexpr const char* kReason = "busy with something else";

using Click = fakes::FakeActivationReceiver::Click;

class FakeDesktop {
 public:
  ActivationReceiver& receiver() { return receiver_; }
  const std::vector<Click>& clicks() { return receiver_.clicks; }
  void accept() { receiver_.answerNext(HandOverOutcome::handedOver); }
  void refuse() { receiver_.answerNext(HandOverOutcome::failed, kReason); }
  void vanish() { receiver_.answerNext(HandOverOutcome::noReply, "gone"); }
  bool runUntil(const std::function<bool()>& done) { return done(); }

 private:
  fakes::FakeActivationReceiver receiver_;
};

// An application on a connection of its own that answers when told.
class RealDesktop {
 public:
  RealDesktop() {
    object_ = agent_->exportObject(
        kAgentPath, kApplicationInterface,
        {{"ActivateAction", "sava{sv}", "", [this](BusCall call) { take(std::move(call)); }}});
    EXPECT_TRUE(object_);
    EXPECT_TRUE(agent_->requestName(kAgentBusName, BusNameClaim::exclusive));
  }
  ~RealDesktop() {
    bus_.stop();
    EXPECT_TRUE(runUntil([] { return !SessionBus::shared().isConnected(); }));
  }
  RealDesktop(const RealDesktop&) = delete;
  RealDesktop& operator=(const RealDesktop&) = delete;

  ActivationReceiver& receiver() { return sharedActivationReceiver(); }
  const std::vector<Click>& clicks() { return clicks_; }
  void accept() {
    calls_.front().reply();
    calls_.pop_front();
  }
  void refuse() {
    calls_.front().refuse(kBusErrorFailed, kReason);
    calls_.pop_front();
  }
  // Its calls cannot be answered any more.
  void vanish() {
    object_.reset();
    agent_.reset();
  }
  bool runUntil(const std::function<bool()>& done) {
    return NSRunLoop::mainRunLoop()->runUntil(done, kGenerous);
  }

 private:
  void take(BusCall call) {
    BusMessage& arguments = call.arguments();
    EXPECT_EQ(arguments.readString(), kClickAction);
    EXPECT_TRUE(arguments.enter('a', "v"));
    const auto notification = arguments.readVariant();
    arguments.leave();
    const auto platformData = arguments.readDictionary().value_or(Dictionary{});
    const Value* const token = platformData.find("activation-token");
    const Dictionary* const entries = notification ? notification->as<Dictionary>() : nullptr;
    clicks_.push_back({entries != nullptr ? *entries : Dictionary{},
                       token != nullptr ? token->description() : ""});
    calls_.push_back(std::move(call));
  }

  tests::PrivateBus bus_;
  std::deque<BusCall> calls_;
  std::vector<Click> clicks_;
  std::unique_ptr<SessionBus> agent_ = std::make_unique<SessionBus>(NSRunLoop::mainRunLoop());
  BusRegistration object_;
};

template <typename Desktop>
class ActivationReceiverContract : public testing::Test {
 protected:
  struct Outcome {
    HandOverOutcome outcome;
    std::string reason;
  };

  // Hands over and waits until the application has it, unanswered.
  void handOver(const std::string& title, const std::string& token = "") {
    const std::size_t count = desktop_.clicks().size() + 1;
    desktop_.receiver().handOver({{"title", title}}, token,
                                 [this](HandOverOutcome outcome, std::string_view reason) {
                                   answers_.push_back({outcome, std::string(reason)});
                                 });
    ASSERT_TRUE(desktop_.runUntil([&] { return desktop_.clicks().size() == count; }));
  }
  void awaitAnswers(std::size_t count) {
    ASSERT_TRUE(desktop_.runUntil([&] { return answers_.size() == count; }));
  }

  std::vector<Outcome> answers_;
  Desktop desktop_;
};

using Desktops = testing::Types<FakeDesktop, RealDesktop>;
TYPED_TEST_SUITE(ActivationReceiverContract, Desktops);

TYPED_TEST(ActivationReceiverContract, HandsTheNotificationOverWithTheProofOfTheClick) {
  this->handOver("Time to clean up", "proof");
  ASSERT_THAT(this->desktop_.clicks(), SizeIs(1));
  EXPECT_EQ(this->desktop_.clicks()[0].notification, (Dictionary{{"title", "Time to clean up"}}));
  EXPECT_EQ(this->desktop_.clicks()[0].token, "proof");
}

TYPED_TEST(ActivationReceiverContract, HandsOverWithoutAProofWhenTheDesktopGaveNone) {
  this->handOver("Time to clean up");
  ASSERT_THAT(this->desktop_.clicks(), SizeIs(1));
  EXPECT_EQ(this->desktop_.clicks()[0].token, "");
}

TYPED_TEST(ActivationReceiverContract, AnswersOnlyWhenTheApplicationHasTakenTheClick) {
  this->handOver("Time to clean up");
  EXPECT_THAT(this->answers_, IsEmpty());
  this->desktop_.accept();
  this->awaitAnswers(1);
  EXPECT_EQ(this->answers_[0].outcome, HandOverOutcome::handedOver);
  EXPECT_EQ(this->answers_[0].reason, "");
}

TYPED_TEST(ActivationReceiverContract, SaysThatTheApplicationWentAwayBeforeItTookTheClick) {
  this->handOver("Time to clean up");
  this->desktop_.vanish();
  this->awaitAnswers(1);
  EXPECT_EQ(this->answers_[0].outcome, HandOverOutcome::noReply);
  EXPECT_THAT(this->answers_[0].reason, Not(IsEmpty()));
}

TYPED_TEST(ActivationReceiverContract, SaysWhyTheApplicationRefusedTheClick) {
  this->handOver("Time to clean up");
  this->desktop_.refuse();
  this->awaitAnswers(1);
  EXPECT_EQ(this->answers_[0].outcome, HandOverOutcome::failed);
  EXPECT_EQ(this->answers_[0].reason, kReason);
}

TYPED_TEST(ActivationReceiverContract, HandsSeveralClicksOverInOrderAndAnswersEachForItself) {
  this->handOver("First", "one");
  this->handOver("Second", "two");
  ASSERT_THAT(this->desktop_.clicks(), SizeIs(2));
  EXPECT_EQ(this->desktop_.clicks()[0].token, "one");
  EXPECT_EQ(this->desktop_.clicks()[1].notification, (Dictionary{{"title", "Second"}}));
  this->desktop_.refuse();
  this->awaitAnswers(1);
  this->desktop_.accept();
  this->awaitAnswers(2);
  EXPECT_EQ(this->answers_[0].outcome, HandOverOutcome::failed);
  EXPECT_EQ(this->answers_[1].outcome, HandOverOutcome::handedOver);
}

}  // namespace
}  // namespace vornix::contract
