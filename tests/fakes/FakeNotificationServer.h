#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/desktop/NotificationServer.h"

namespace vornix::fakes {

// A notification server whose answers come when `answerAll` is called.
class FakeNotificationServer final : public NotificationServer {
 public:
  struct Posted {
    std::string owner;
    NotificationPost notification;
    std::uint32_t identifier = 0;
  };

  void setObserver(NotificationServerObserver* observer) override { observer_ = observer; }
  void findOwner(std::function<void(std::string_view)> answer) override;
  void start() override;
  void describe(
      std::string_view owner,
      std::function<void(const std::optional<NotificationServerDescription>&)> answer) override;
  void post(std::string_view owner, const NotificationPost& notification,
            std::function<void(const PostResult&)> answer) override;
  void close(std::string_view owner, std::uint32_t identifier) override;

  // Gives every answer that is due, those that the answers lead to included.
  void answerAll();
  // A server comes (":1.5") or goes (""); the observer is told.
  void changeOwner(const std::string& owner);
  // The person acts; the observer hears of a token before the action.
  void click(std::uint32_t identifier, std::string_view key, std::string_view token = "");
  void dismiss(std::uint32_t identifier);

  // The present server; set directly for one that was there first.
  std::string owner;
  // The owner that `start` brings up; empty when there is none to start.
  std::string startable;
  std::optional<NotificationServerDescription> description =
      NotificationServerDescription{.name = "fake", .capabilities = {"actions", "body"}};
  // Answers to the next posts to the owner, in order; afterwards everything is shown.
  std::deque<PostResult> nextResults;

  std::vector<Posted> posted;
  std::vector<std::pair<std::string, std::uint32_t>> closed;
  // "find" and "start", in order.
  std::vector<std::string> searches;
  int descriptionsAsked = 0;

 private:
  NotificationServerObserver* observer_ = nullptr;
  std::deque<std::function<void()>> answers_;
  std::uint32_t lastIdentifier_ = 0;
};

}  // namespace vornix::fakes
