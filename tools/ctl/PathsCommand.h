#pragma once

#include <functional>
#include <vector>

#include "tools/ctl/CommandLine.h"
#include "tools/ctl/LocationOutput.h"

namespace vornix::tools {

// "paths": prints the locations as a table, with "--json" for machines. They are asked for only
// when the words make sense.
[[nodiscard]] CommandResult runPathsCommand(
    Words words, const std::function<std::vector<Location>()>& locations);

}  // namespace vornix::tools
