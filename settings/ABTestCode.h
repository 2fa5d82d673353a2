#pragma once

#include <cstdint>
#include <string_view>
#include <utility>
#include <vector>

namespace vornix {

// One piece of an A/B assignment code: a case number and the letters behind it, which are empty
// where there are none.
using ABTestCodePiece = std::pair<std::int64_t, std::string_view>;

// The pieces of a code such as "1A3C", in order. White space before a number or its letters is
// passed over, letters without a number are left out, and so is the largest number (it marks an
// absent one; larger numbers count as it). Reading ends at a digit that is not ASCII. The pieces
// refer to `code`.
[[nodiscard]] std::vector<ABTestCodePiece> parseABTestCode(std::string_view code);

}  // namespace vornix
