#pragma once

#include <string>

namespace vornix {

// One notification that the person sees.
struct NSUserNotification {
  std::string title;
  std::string informativeText;
  bool hasActionButton = true;
  std::string actionButtonTitle;
  std::string otherButtonTitle;

  friend bool operator==(const NSUserNotification&, const NSUserNotification&) = default;
};

}  // namespace vornix
