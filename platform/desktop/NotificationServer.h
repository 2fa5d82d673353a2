#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vornix {

// A button, or the body under the key "default".
struct NotificationAction {
  std::string key;
  std::string label;

  friend bool operator==(const NotificationAction&, const NotificationAction&) = default;
};

// What a server is asked to show, until the person acts.
struct NotificationPost {
  std::string applicationName;
  std::string desktopEntry;
  std::string summary;
  // Markup where the server interprets it.
  std::string body;
  std::vector<NotificationAction> actions;

  friend bool operator==(const NotificationPost&, const NotificationPost&) = default;
};

struct NotificationServerDescription {
  std::string name;
  std::vector<std::string> capabilities;
};

enum class PostOutcome {
  shown,
  // The server takes it for a repetition of the one just before.
  repeatedTooSoon,
  // It went away before it answered.
  serverGone,
  refused
};

struct PostResult {
  PostOutcome outcome = PostOutcome::refused;
  // Names the notification at that server; when shown.
  std::uint32_t identifier = 0;
  // The server's own words; when refused.
  std::string reason;
};

// Told what happens at the desktop's notification server. `sender` says who claims it: only what
// the present owner says is true.
class NotificationServerObserver {
 public:
  virtual ~NotificationServerObserver() = default;
  // Empty when there is no server any more.
  virtual void ownerChanged(std::string_view owner) = 0;
  // Comes before the action that the person's click stands for.
  virtual void activationTokenArrived(std::string_view sender, std::uint32_t identifier,
                                      std::string_view token) = 0;
  virtual void actionInvoked(std::string_view sender, std::uint32_t identifier,
                             std::string_view key) = 0;
  virtual void notificationClosed(std::string_view sender, std::uint32_t identifier) = 0;
};

// The program that draws notifications on the desktop. Answers and observations come later, on the
// main thread, never from inside an operation. Main thread.
class NotificationServer {
 public:
  virtual ~NotificationServer() = default;

  // Not owned; null for none. Must be set before anything else is asked.
  virtual void setObserver(NotificationServerObserver* observer) = 0;
  // Whoever is the server at present; empty when nobody is. Starts nothing.
  virtual void findOwner(std::function<void(std::string_view owner)> answer) = 0;
  // Asks the desktop to start one. The observer hears of it if there is one to start.
  virtual void start() = 0;
  // None when the server does not say.
  virtual void describe(
      std::string_view owner,
      std::function<void(const std::optional<NotificationServerDescription>&)> answer) = 0;
  virtual void post(std::string_view owner, const NotificationPost& notification,
                    std::function<void(const PostResult&)> answer) = 0;
  // Nobody asks how it went: some servers have closed it already.
  virtual void close(std::string_view owner, std::uint32_t identifier) = 0;
};

// The desktop's, never destroyed.
[[nodiscard]] NotificationServer& sharedNotificationServer();

}  // namespace vornix
