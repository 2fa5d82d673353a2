#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/desktop/NSUserNotification.h"
#include "platform/linux/bus/SessionBus.h"

namespace vornix {

// The agent's object on the bus, at which the desktop hands over clicks. Main thread.
class AgentBusPresence {
 public:
  // The click's notification and token. A click is answered before it is handled; one that finds
  // no handler is sent back when the name is free, and the bus starts another agent for it.
  using ClickHandler = std::function<void(const NSUserNotification&, const std::string& token)>;

  explicit AgentBusPresence(SessionBus& bus) : bus_(bus) {}

  void setClickHandler(ClickHandler handler) { clicked_ = std::move(handler); }
  // Called for a start without a click.
  void setActivateHandler(std::function<void()> handler) { activated_ = std::move(handler); }

  // Offers the object, then takes the agent's name. False when another agent has it.
  bool appear();
  // Gives the name back. Clicks that had reached us by then are sent back.
  void disappear();
  // Becomes the agent that the latest click has started; `ended` is called when the next one takes
  // over or the session ends.
  void becomeLatestInstance(const std::function<void()>& ended);

 private:
  [[nodiscard]] std::vector<BusOperation> operations();
  void activateAction(BusCall call);

  SessionBus& bus_;
  ClickHandler clicked_;
  std::function<void()> activated_;
  std::vector<BusCall> heldClicks_;
  BusRegistration object_;
  BusRegistration replaced_;
  BusRegistration lost_;
};

}  // namespace vornix
