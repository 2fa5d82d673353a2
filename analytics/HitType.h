#pragma once

#include <string_view>

namespace vornix {

// The parameter that says what a hit is, and its values.
inline constexpr std::string_view kHitTypeParameter = "t";

namespace HitType {

inline constexpr std::string_view event = "event";
inline constexpr std::string_view timing = "timing";
inline constexpr std::string_view appview = "appview";
inline constexpr std::string_view transaction = "transaction";
inline constexpr std::string_view item = "item";

}  // namespace HitType
}  // namespace vornix
