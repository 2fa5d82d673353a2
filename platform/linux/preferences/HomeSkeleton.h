#pragma once

#include <string>

namespace vornix {

// The folders that every home of the family has: "Library" with "Preferences" and "Logs", open to
// the owner only. Folders that exist stay as they are; one that cannot be made shows when it is
// used. Any thread.
void makeHomeSkeleton(const std::string& home);

}  // namespace vornix
