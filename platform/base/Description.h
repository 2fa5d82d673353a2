#pragma once

#include <string>

#include "platform/base/Value.h"

namespace vornix::text {

// A value as "%@" prints it: strings bare, reals with up to 16 significant digits, dates in UTC as
// "yyyy-MM-dd HH:mm:ss +0000", containers over several lines with their strings quoted.
[[nodiscard]] std::string describe(const Value& value);

// The same for a value that stands inside a container `depth` levels down.
[[nodiscard]] std::string describeNested(const Value& value, int depth);

// A date in UTC, Gregorian, seconds cut off.
[[nodiscard]] std::string describeDate(Date date);

}  // namespace vornix::text
