#pragma once

#include <functional>
#include <string_view>

namespace vornix {

// Calls the block. An exception that leaves it, or a missing block, becomes a diagnostic that names
// `place`.
void callReportingExceptions(const std::function<void()>& block, std::string_view place);

}  // namespace vornix
