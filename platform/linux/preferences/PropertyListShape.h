#pragma once

#include <string_view>

namespace vornix {

// The property-list library recurses over what it reads and copies what a binary list refers to
// more than once, and stops the process at a key with a zero in it. False for bytes whose tree
// would nest deeper than 512 levels or hold more than a million nodes, and for a binary list whose
// references lead nowhere or whose keys are no texts without zeros. Says nothing else.
[[nodiscard]] bool hasReasonableShape(std::string_view bytes);

}  // namespace vornix
