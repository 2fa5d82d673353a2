#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/base/NSObject.h"

namespace vornix {

// An announcement inside the process.
struct NSNotification {
  std::string name;
  // Whom it concerns; may be null.
  std::shared_ptr<NSObject> object;
  Dictionary userInfo;
};

inline constexpr std::string_view NSUserDefaultsDidChangeNotification =
    "NSUserDefaultsDidChangeNotification";
inline constexpr std::string_view NSApplicationDidFinishLaunchingNotification =
    "NSApplicationDidFinishLaunchingNotification";
inline constexpr std::string_view NSApplicationWillTerminateNotification =
    "NSApplicationWillTerminateNotification";

// Delivers announcements synchronously, on the posting thread, in order of registration. An
// observer removed during a posting is not called any more; one added during it is not called for
// it. No lock is held while observers run. Any thread.
class NSNotificationCenter {
 public:
  using Handler = std::function<void(const NSNotification&)>;
  // Identifies an observer until it is removed. Copies name the same observer.
  using ObserverToken = std::shared_ptr<const void>;

  NSNotificationCenter();
  NSNotificationCenter(const NSNotificationCenter&) = delete;
  NSNotificationCenter& operator=(const NSNotificationCenter&) = delete;
  ~NSNotificationCenter();

  // The process's centre. Never destroyed.
  [[nodiscard]] static NSNotificationCenter& defaultCenter();

  // `object` null: from any object.
  [[nodiscard]] ObserverToken addObserver(std::string_view name, Handler handler,
                                          const NSObject* object = nullptr);
  // A token of another centre, null, or one removed before has no effect.
  void removeObserver(const ObserverToken& token);
  // Whether anybody has registered for the name.
  [[nodiscard]] bool hasObserver(std::string_view name) const;
  void postNotification(const NSNotification& notification);

 private:
  class State;
  std::unique_ptr<State> state_;
};

}  // namespace vornix
