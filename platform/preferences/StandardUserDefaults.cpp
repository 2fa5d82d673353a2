#include "platform/preferences/NSUserDefaults.h"
#include "platform/system/NSBundle.h"

namespace vornix {

std::shared_ptr<NSUserDefaults> NSUserDefaults::standardUserDefaults() {
  // Not while they are being made: a bundle that cannot be read is logged, and the log asks for
  // them.
  const auto identifier = NSBundle::mainBundle().bundleIdentifier();
  static const auto& defaults = *new std::shared_ptr<NSUserDefaults>(
      std::make_shared<NSUserDefaults>(identifier.value_or(""), sharedPreferencesStore(),
                                       NSNotificationCenter::defaultCenter()));
  return defaults;
}

}  // namespace vornix
