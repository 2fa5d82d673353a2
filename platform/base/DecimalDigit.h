#pragma once

namespace vornix::text {

// A decimal digit of any script, as Unicode 15 has them.
[[nodiscard]] bool isDecimalDigit(char32_t character);

}  // namespace vornix::text
