#pragma once

#include <vector>

#include "locations/VXPaths.h"
#include "platform/files/NSFileManager.h"
#include "tools/ctl/LocationOutput.h"

namespace vornix::tools {

// Every accessor of the catalogue under its name, in a fixed order; one with several places has one
// entry a place. Makes the folders that the catalogue makes when it is asked.
[[nodiscard]] std::vector<Location> locationCatalogue(const VXPaths& paths,
                                                      const NSFileManager& files);

}  // namespace vornix::tools
