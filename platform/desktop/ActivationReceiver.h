#pragma once

#include <functional>
#include <string_view>

#include "platform/base/Value.h"

namespace vornix {

enum class HandOverOutcome {
  handedOver,
  // It went away before it took the click.
  noReply,
  failed
};

// The application to which a click on its notification is handed, running or not: the desktop
// starts it. Main thread.
class ActivationReceiver {
 public:
  using Answer = std::function<void(HandOverOutcome outcome, std::string_view reason)>;

  virtual ~ActivationReceiver() = default;

  // `token`: the desktop's proof of the click; may be empty. The answer comes once, later, on the
  // main thread.
  virtual void handOver(const Dictionary& notification, std::string_view token, Answer answer) = 0;
};

// The agent, never destroyed.
[[nodiscard]] ActivationReceiver& sharedActivationReceiver();

}  // namespace vornix
