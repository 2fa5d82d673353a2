#include "tests/fakes/FakeNotificationServer.h"

namespace vornix::fakes {

void FakeNotificationServer::findOwner(std::function<void(std::string_view)> answer) {
  searches.emplace_back("find");
  answers_.emplace_back([this, answer = std::move(answer)] { answer(owner); });
}

void FakeNotificationServer::start() {
  searches.emplace_back("start");
  if (!startable.empty()) {
    answers_.emplace_back([this] { changeOwner(startable); });
  }
}

void FakeNotificationServer::describe(
    std::string_view at,
    std::function<void(const std::optional<NotificationServerDescription>&)> answer) {
  ++descriptionsAsked;
  answers_.emplace_back([this, isThere = at == owner, answer = std::move(answer)] {
    answer(isThere ? description : std::nullopt);
  });
}

void FakeNotificationServer::post(std::string_view to, const NotificationPost& notification,
                                  std::function<void(const PostResult&)> answer) {
  PostResult result{PostOutcome::shown, ++lastIdentifier_, {}};
  if (to != owner) {
    result = {PostOutcome::serverGone, 0, "nobody has that name"};
  } else if (!nextResults.empty()) {
    result = nextResults.front();
    nextResults.pop_front();
  }
  posted.push_back({std::string(to), notification, result.identifier});
  answers_.emplace_back([result, answer = std::move(answer)] { answer(result); });
}

void FakeNotificationServer::close(std::string_view at, std::uint32_t identifier) {
  closed.emplace_back(std::string(at), identifier);
}

void FakeNotificationServer::answerAll() {
  while (!answers_.empty()) {
    const auto next = std::move(answers_.front());
    answers_.pop_front();
    next();
  }
}

void FakeNotificationServer::changeOwner(const std::string& newOwner) {
  owner = newOwner;
  if (observer_ != nullptr) {
    observer_->ownerChanged(newOwner);
  }
}

void FakeNotificationServer::click(std::uint32_t identifier, std::string_view key,
                                   std::string_view token) {
  if (observer_ == nullptr) {
    return;
  }
  if (!token.empty()) {
    observer_->activationTokenArrived(owner, identifier, token);
  }
  observer_->actionInvoked(owner, identifier, key);
}

void FakeNotificationServer::dismiss(std::uint32_t identifier) {
  if (observer_ != nullptr) {
    observer_->notificationClosed(owner, identifier);
  }
}

}  // namespace vornix::fakes
