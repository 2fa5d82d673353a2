#include "locations/VXPaths.h"

namespace vornix {
namespace {

NSURL folder(std::string_view path) {
  return NSURL::fileURLWithPath(path, true);
}

}  // namespace

NSURL VXPaths::inHome(std::string_view relativePath) const {
  const NSURL home = userHome();
  return home.URLByAppendingPathComponent(relativePath, home.hasDirectoryPath());
}

NSURL VXPaths::userPreferences() const {
  return inHome("Library/Preferences");
}

NSURL VXPaths::localPreferences() {
  return folder("/Library/Preferences");
}

std::vector<NSURL> VXPaths::preferences() const {
  return {localPreferences(), userPreferences()};
}

NSURL VXPaths::userLogs() const {
  return inHome("Library/Logs");
}

NSURL VXPaths::allUsersLogs() {
  return folder("/Library/Logs");
}

NSURL VXPaths::aslLogs() {
  return folder("/var/log/asl/");
}

NSURL VXPaths::userPrefPanesURL() const {
  return inHome("Library/PreferencePanes");
}

NSURL VXPaths::allUsersPrefPanesURL() {
  return folder("/Library/PreferencePanes");
}

NSURL VXPaths::userScriptingAdditionsURL() const {
  return inHome("Library/ScriptingAdditions");
}

NSURL VXPaths::allUsersScriptingAdditionsURL() {
  return folder("/Library/ScriptingAdditions");
}

NSURL VXPaths::launchAgentsPath() const {
  return inHome("Library/LaunchAgents");
}

NSURL VXPaths::systemLaunchAgentsPath() {
  return folder("/Library/LaunchAgents");
}

NSURL VXPaths::systemCoreLaunchAgentsPath() {
  return folder("/System/Library/LaunchAgents");
}

NSURL VXPaths::launchDaemonsPath() {
  return folder("/Library/LaunchDaemons");
}

NSURL VXPaths::sandboxContainer() const {
  return inHome("Library/Containers");
}

NSURL VXPaths::sandboxGroupContainer() const {
  return inHome("Library/Group Containers");
}

NSURL VXPaths::systemTrash() const {
  return inHome(".Trash");
}

NSURL VXPaths::mailPluginsURL() const {
  return inHome("Library/Mail/Bundles");
}

NSURL VXPaths::localKextURL() {
  return folder("/Library/Extensions");
}

NSURL VXPaths::systemKextURL() {
  return folder("/System/Library/Extensions");
}

std::vector<std::string> VXPaths::systemPlugInFolders() {
  return {"/Library/QuickTime",
          "/Library/Internet Plug-ins",
          "/Library/Safari/Extensions",
          "/Library/QuickLook",
          "/Library/Contextual Menu Items",
          "/Library/Spotlight",
          "/Library/InputManagers",
          "/Library/iTunes/iTunes Plug-ins",
          "/Library/iTunes/Scripts",
          "/Library/Address Book Plug-Ins",
          "/Library/Screen Savers",
          "/Library/Dictionaries",
          "/Library/Mail/Bundles",
          "/Library/Services",
          "/Library/Application Support/Growl/Tickets"};
}

}  // namespace vornix
