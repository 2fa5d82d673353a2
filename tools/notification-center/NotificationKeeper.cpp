#include "tools/notification-center/NotificationKeeper.h"

#include <algorithm>
#include <utility>

#include "platform/base/Diagnostics.h"
#include "platform/desktop/NSUserNotification.h"
#include "tools/notification-center/NotificationComposer.h"

namespace vornix {

NotificationKeeper::NotificationKeeper(NotificationServer& server, ActivationReceiver& receiver,
                                       Delay delay, std::function<void()> idle,
                                       NotificationKeeperTiming timing)
    : server_(server),
      receiver_(receiver),
      delay_(std::move(delay)),
      idle_(std::move(idle)),
      timing_(timing) {
  server_.setObserver(this);
  settle();
}

NotificationKeeper::~NotificationKeeper() {
  server_.setObserver(nullptr);
}

bool NotificationKeeper::isIdle() const {
  return kept_.empty() && clicksOnTheirWay_ == 0;
}

bool NotificationKeeper::deliver(const Dictionary& notification) {
  if (!userNotificationWithDictionary(notification)) {
    return false;
  }
  kept_.push_back({.key = ++lastKey_, .notification = notification});
  showWaiting();
  return true;
}

std::vector<Dictionary> NotificationKeeper::displayed() const {
  std::vector<Dictionary> notifications;
  for (const Kept& kept : kept_) {
    if (kept.state != State::closed && !kept.isRemoved) {
      notifications.push_back(kept.notification);
    }
  }
  return notifications;
}

void NotificationKeeper::removeAllDisplayed() {
  for (Kept& kept : kept_) {
    if (kept.state == State::shown) {
      server_.close(owner_, kept.identifier);
    }
    kept.isRemoved = kept.isRemoved || kept.state == State::posting;
  }
  kept_.remove_if(
      [](const Kept& kept) { return kept.state != State::posting && kept.state != State::closed; });
  settle();
}

void NotificationKeeper::showWaiting() {
  const auto isWaiting = [](const Kept& kept) { return kept.state == State::waiting; };
  if (std::ranges::none_of(kept_, isWaiting)) {
    return;
  }
  if (owner_.empty()) {
    findServer();
    return;
  }
  if (!description_) {
    askDescription();
    return;
  }
  for (Kept& kept : kept_) {
    if (isWaiting(kept)) {
      post(kept);
    }
  }
}

// Starting a name that is owned but cannot be started is an error, hence the question first.
void NotificationKeeper::findServer() {
  if (isFinding_) {
    return;
  }
  isFinding_ = true;
  server_.findOwner([this](std::string_view owner) {
    isFinding_ = false;
    if (!owner.empty()) {
      ownerChanged(owner);
    } else if (owner_.empty()) {
      server_.start();
    }
  });
}

void NotificationKeeper::askDescription() {
  if (isDescribing_) {
    return;
  }
  isDescribing_ = true;
  server_.describe(owner_, [this, owner = owner_](const auto& description) {
    if (owner == owner_) {
      isDescribing_ = false;
      description_ = description.value_or(NotificationServerDescription{});
      showWaiting();
    }
  });
}

void NotificationKeeper::post(Kept& kept) {
  kept.state = State::posting;
  server_.post(owner_, composePost(kept.notification, *description_),
               [this, key = kept.key, owner = owner_](const PostResult& result) {
                 posted(key, owner, result);
                 settle();
               });
}

void NotificationKeeper::posted(std::uint64_t key, std::string_view owner,
                                const PostResult& result) {
  Kept* kept = find(key);
  if (kept == nullptr) {
    return;
  }
  if (result.outcome == PostOutcome::shown) {
    shown(*kept, owner, result.identifier);
  } else if (kept->isRemoved) {
    erase(key);
  } else if (result.outcome == PostOutcome::serverGone) {
    kept->state = State::waiting;
    if (owner != owner_) {
      showWaiting();
    }
  } else if (result.outcome == PostOutcome::repeatedTooSoon && !kept->wasRepeated) {
    repeatLater(*kept);
  } else {
    giveUp(*kept, result.reason);
  }
}

void NotificationKeeper::shown(Kept& kept, std::string_view owner, std::uint32_t identifier) {
  if (kept.isRemoved) {
    server_.close(owner, identifier);
    erase(kept.key);
  } else if (owner != owner_) {
    // Nobody listens to that server any more.
    kept.state = State::waiting;
    showWaiting();
  } else {
    kept.identifier = identifier;
    kept.state = State::shown;
  }
}

void NotificationKeeper::repeatLater(Kept& kept) {
  kept.state = State::resting;
  kept.wasRepeated = true;
  delay_(timing_.beforeRepeating, [this, key = kept.key] {
    if (Kept* rested = find(key)) {
      rested->state = State::waiting;
      showWaiting();
    }
  });
}

void NotificationKeeper::giveUp(const Kept& kept, std::string_view reason) {
  reportDiagnostic("The desktop does not show the notification: " + std::string(reason));
  erase(kept.key);
}

void NotificationKeeper::ownerChanged(std::string_view owner) {
  if (owner == owner_) {
    return;
  }
  owner_ = owner;
  description_.reset();
  isDescribing_ = false;
  kept_.remove_if(
      [](const Kept& kept) { return kept.state == State::shown || kept.state == State::closed; });
  if (!owner_.empty()) {
    showWaiting();
  }
  settle();
}

void NotificationKeeper::activationTokenArrived(std::string_view sender, std::uint32_t identifier,
                                                std::string_view token) {
  if (Kept* kept = findAtServer(sender, identifier)) {
    kept->token = token;
  }
}

void NotificationKeeper::actionInvoked(std::string_view sender, std::uint32_t identifier,
                                       std::string_view key) {
  Kept* kept = findAtServer(sender, identifier);
  if (kept == nullptr) {
    return;
  }
  const Kept clicked = *kept;
  erase(clicked.key);
  if (clicked.state == State::shown) {
    server_.close(owner_, identifier);
  }
  if (actionIsClick(key)) {
    handOver(clicked.notification, clicked.token, true);
  }
  settle();
}

void NotificationKeeper::notificationClosed(std::string_view sender, std::uint32_t identifier) {
  Kept* kept = findAtServer(sender, identifier);
  if (kept == nullptr || kept->state == State::closed) {
    return;
  }
  kept->state = State::closed;
  delay_(timing_.lateClick, [this, key = kept->key] {
    erase(key);
    settle();
  });
}

void NotificationKeeper::handOver(const Dictionary& notification, const std::string& token,
                                  bool mayRepeat) {
  ++clicksOnTheirWay_;
  receiver_.handOver(
      notification, token,
      [this, notification, token, mayRepeat](HandOverOutcome outcome, std::string_view reason) {
        --clicksOnTheirWay_;
        if (outcome == HandOverOutcome::noReply && mayRepeat) {
          handOver(notification, token, false);
        } else if (outcome != HandOverOutcome::handedOver) {
          reportDiagnostic("The click on the notification reached nobody: " + std::string(reason));
        }
        settle();
      });
}

void NotificationKeeper::settle() {
  ++idleCount_;
  if (!isIdle()) {
    return;
  }
  delay_(timing_.idle, [this, count = idleCount_] {
    if (count == idleCount_ && isIdle()) {
      idle_();
    }
  });
}

NotificationKeeper::Kept* NotificationKeeper::find(std::uint64_t key) {
  const auto found = std::ranges::find(kept_, key, &Kept::key);
  return found != kept_.end() ? &*found : nullptr;
}

NotificationKeeper::Kept* NotificationKeeper::findAtServer(std::string_view sender,
                                                           std::uint32_t identifier) {
  if (owner_.empty() || sender != owner_) {
    return nullptr;
  }
  const auto found = std::ranges::find_if(kept_, [identifier](const Kept& kept) {
    return kept.identifier == identifier &&
           (kept.state == State::shown || kept.state == State::closed);
  });
  return found != kept_.end() ? &*found : nullptr;
}

void NotificationKeeper::erase(std::uint64_t key) {
  kept_.remove_if([key](const Kept& kept) { return kept.key == key; });
}

}  // namespace vornix
