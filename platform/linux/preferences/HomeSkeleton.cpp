#include "platform/linux/preferences/HomeSkeleton.h"

#include <sys/stat.h>

namespace vornix {

void makeHomeSkeleton(const std::string& home) {
  if (home.empty()) return;
  for (const char* folder : {"/Library", "/Library/Preferences", "/Library/Logs"}) {
    mkdir((home + folder).c_str(), 0700);
  }
}

}  // namespace vornix
