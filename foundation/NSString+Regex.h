#pragma once

#include <string_view>

#include "platform/text/NSRegularExpression.h"

namespace vornix {

// Whether the expression matches anywhere in the receiver, if only an empty piece of it.
[[nodiscard]] bool isMatchedByRegex(std::string_view self, const NSRegularExpression& regex);

}  // namespace vornix
