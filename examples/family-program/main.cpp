#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>

#include "foundation/NSString+Hashing.h"
#include "foundation/NSString+NSStringAdditions.h"
#include "locations/VXPaths.h"
#include "logging/GTMLogger.h"
#include "logging/family/GTMLogger+VNX.h"
#include "platform/system/NSBundle.h"

namespace {

void print(const char* name, const std::string& text) {
  std::printf("%-18s %s\n", name, text.c_str());
}

void print(const char* name, const std::optional<std::string>& text) {
  print(name, text.value_or("none"));
}

void printLocations(const vornix::VXPaths& paths) {
  print("Home", paths.userHome().path());
  print("Preferences", paths.userPreferences().path());
  print("Temporary files", paths.userTempPath());
  print("Log folder", paths.vnxLogFolderPath());
  print("Log", vornix::vnx_pathForLog());
}

void printTexts() {
  print("MD5 of \"Vornix\"", vornix::md5Hash("Vornix"));
  print("Without tags", vornix::stripHTML("Time to <b>clean</b> up"));
  print("First language", vornix::preferredLanguages().front());
}

}  // namespace

int main() {
  // In a fresh home the first who asks for the log folder makes it, and is answered none.
  (void)vornix::VXPaths::sharedInstance().vnxLogFolderPath();
  vornix::initVNXLogger();
  printLocations(vornix::VXPaths::sharedInstance());
  printTexts();
  // The log writes to the same output, past what is still in the buffer.
  std::fflush(stdout);
  vornix::GTMLogger::sharedLogger()->logDebug("%@ has come to its end", "family-program");
  return EXIT_SUCCESS;
}
