#pragma once

#include <string>

namespace vornix::bench {

// Each overwrites what the folder's files hold and removes them with the folder.
void removeSecurelyWithOurs(const std::string& folder);
// As simple as it can be: a block that was made before, one file after the other, each on the disk
// before it goes.
void removeSecurelyRaw(const std::string& folder);
// False where the program is not there.
bool removeSecurelyWithShred(const std::string& folder);

}  // namespace vornix::bench
