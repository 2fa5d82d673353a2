#pragma once

#include <cstdint>
#include <functional>
#include <list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/desktop/ActivationReceiver.h"
#include "platform/desktop/NotificationCenterPort.h"
#include "platform/desktop/NotificationServer.h"

namespace vornix {

// Waiting times in seconds.
struct NotificationKeeperTiming {
  // A server refuses to show the same text twice within a second.
  double beforeRepeating = 1.5;
  // Some servers report a notification's end before the click that ended it.
  double lateClick = 5;
  // How long to stay although there is nothing to keep.
  double idle = 5;
};

// Keeps the notifications of applications that may have quit long ago: shows each as soon as there
// is a server, hands each click to the application, and says when there is nothing left to keep.
// Main thread.
class NotificationKeeper final : public NotificationRequests, public NotificationServerObserver {
 public:
  // Calls the block once, so many seconds later.
  using Delay = std::function<void(double seconds, std::function<void()> block)>;

  // Server and receiver must outlive the keeper, and the keeper every block handed to `delay`.
  // `idle` is called each time nothing was kept for the idle time.
  NotificationKeeper(NotificationServer& server, ActivationReceiver& receiver, Delay delay,
                     std::function<void()> idle, NotificationKeeperTiming timing = {});
  NotificationKeeper(const NotificationKeeper&) = delete;
  NotificationKeeper& operator=(const NotificationKeeper&) = delete;
  ~NotificationKeeper() override;

  // True when nothing is shown, waiting to be shown, or on its way to the application.
  [[nodiscard]] bool isIdle() const;

  bool deliver(const Dictionary& notification) override;
  [[nodiscard]] std::vector<Dictionary> displayed() const override;
  void removeAllDisplayed() override;

  void ownerChanged(std::string_view owner) override;
  void activationTokenArrived(std::string_view sender, std::uint32_t identifier,
                              std::string_view token) override;
  void actionInvoked(std::string_view sender, std::uint32_t identifier,
                     std::string_view key) override;
  void notificationClosed(std::string_view sender, std::uint32_t identifier) override;

 private:
  enum class State { waiting, posting, resting, shown, closed };

  struct Kept {
    std::uint64_t key = 0;
    Dictionary notification;
    State state = State::waiting;
    // At the server; when shown or closed.
    std::uint32_t identifier = 0;
    std::string token{};
    bool wasRepeated = false;
    // Taken back while the server had not yet answered.
    bool isRemoved = false;
  };

  void showWaiting();
  void findServer();
  void askDescription();
  void post(Kept& kept);
  void posted(std::uint64_t key, std::string_view owner, const PostResult& result);
  void shown(Kept& kept, std::string_view owner, std::uint32_t identifier);
  void repeatLater(Kept& kept);
  void giveUp(const Kept& kept, std::string_view reason);
  void handOver(const Dictionary& notification, const std::string& token, bool mayRepeat);
  void settle();
  [[nodiscard]] Kept* find(std::uint64_t key);
  [[nodiscard]] Kept* findAtServer(std::string_view sender, std::uint32_t identifier);
  void erase(std::uint64_t key);

  NotificationServer& server_;
  ActivationReceiver& receiver_;
  Delay delay_;
  std::function<void()> idle_;
  NotificationKeeperTiming timing_;
  std::list<Kept> kept_;
  std::string owner_;
  std::optional<NotificationServerDescription> description_;
  bool isFinding_ = false;
  bool isDescribing_ = false;
  int clicksOnTheirWay_ = 0;
  std::uint64_t lastKey_ = 0;
  // Counts changes, so that an idle time that was interrupted does not end.
  std::uint64_t idleCount_ = 0;
};

}  // namespace vornix
