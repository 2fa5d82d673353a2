#pragma once

#include <cstddef>
#include <string_view>

namespace vornix::text {

// Where `pattern` first stands in `bytes`, or `std::string_view::npos`. Linear in the lengths of
// both, without any allocation. An empty pattern stands at the start.
[[nodiscard]] std::size_t findBytes(std::string_view bytes, std::string_view pattern);

}  // namespace vornix::text
