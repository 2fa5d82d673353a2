#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/files/NSFileManager.h"
#include "platform/files/StandardDirectories.h"

namespace vornix {

// The person's home, without a slash at the end.
[[nodiscard]] std::string NSHomeDirectory(
    const StandardDirectories& directories = sharedStandardDirectories());

// The folder for temporary files, with a slash at the end.
[[nodiscard]] std::string NSTemporaryDirectory(
    const StandardDirectories& directories = sharedStandardDirectories());

// The standard folders of a kind, the person's first; none of an unknown kind or domain. Unless
// `expandTilde`, what lies in the home starts with "~".
[[nodiscard]] std::vector<std::string> NSSearchPathForDirectoriesInDomains(
    NSSearchPathDirectory kind, NSSearchPathDomainMask domains, bool expandTilde,
    const StandardDirectories& directories = sharedStandardDirectories());

// "~" and "~/..." start at the person's home, "~name" and "~name/..." at that account's; of an
// unknown account, the text comes back as it is. A slash at the end goes in any other case.
[[nodiscard]] std::string stringByExpandingTildeInPath(
    std::string_view self, const StandardDirectories& directories = sharedStandardDirectories());

// With the tilde expanded and without "//", "/./" and a slash at the end. In an absolute path ".."
// is resolved, through links; the text comes back as it is where these lead in a circle.
[[nodiscard]] std::string stringByStandardizingPath(
    std::string_view self, const NSFileManager& files = NSFileManager::defaultManager());

}  // namespace vornix
