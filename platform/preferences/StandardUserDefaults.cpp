#include "platform/preferences/NSUserDefaults.h"
#include "platform/system/NSBundle.h"

namespace vornix {

std::shared_ptr<NSUserDefaults> NSUserDefaults::standardUserDefaults() {
  static const auto& defaults =
      *new std::shared_ptr<NSUserDefaults>(std::make_shared<NSUserDefaults>(
          NSBundle::mainBundle().bundleIdentifier().value_or(""), sharedPreferencesStore(),
          NSNotificationCenter::defaultCenter()));
  return defaults;
}

}  // namespace vornix
