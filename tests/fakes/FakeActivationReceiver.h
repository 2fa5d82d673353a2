#pragma once

#include <deque>
#include <string>
#include <utility>
#include <vector>

#include "platform/desktop/ActivationReceiver.h"

namespace vornix::fakes {

// An application that records the clicks handed to it; answers come when `answerNext` is called.
class FakeActivationReceiver final : public ActivationReceiver {
 public:
  struct Click {
    Dictionary notification;
    std::string token;
  };

  void handOver(const Dictionary& notification, std::string_view token, Answer answer) override {
    clicks.push_back({notification, std::string(token)});
    answers_.push_back(std::move(answer));
  }

  void answerNext(HandOverOutcome outcome, std::string_view reason = "") {
    const Answer answer = std::move(answers_.front());
    answers_.pop_front();
    answer(outcome, reason);
  }
  [[nodiscard]] std::size_t unanswered() const { return answers_.size(); }

  std::vector<Click> clicks;

 private:
  std::deque<Answer> answers_;
};

}  // namespace vornix::fakes
