#pragma once

#include "platform/linux/bus/SessionBus.h"

// Where the system's own programs are found on the session bus.
namespace vornix {

inline constexpr const char* kBusDaemonName = "org.freedesktop.DBus";
inline constexpr const char* kBusDaemonPath = "/org/freedesktop/DBus";

// The agent. The second name belongs to the agent that a click has started last.
inline constexpr const char* kAgentBusName = "com.orvane.Vornix3.Scheduler";
inline constexpr const char* kAgentInstanceBusName = "com.orvane.Vornix3.Scheduler.Instance";
inline constexpr const char* kAgentPath = "/com/orvane/Vornix3/Scheduler";
inline constexpr const char* kApplicationInterface = "org.freedesktop.Application";
inline constexpr const char* kClickAction = "user-notification-activated";

// The notification centre; its interface has the name of the bus.
inline constexpr const char* kNotificationCenterBusName = "com.orvane.Vornix3.NotificationCenter";
inline constexpr const char* kNotificationCenterPath = "/com/orvane/Vornix3/NotificationCenter";

}  // namespace vornix
