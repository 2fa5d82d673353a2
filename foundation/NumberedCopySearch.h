#pragma once

#include <string_view>

#include "platform/text/PatternAutomaton.h"

namespace vornix {

// Finds a name followed by spaces and a digit, as the regular expression "(name)( )*[0-9]+" does
// without regard to case, for a name in which no character has a meaning of its own. Linear.
class NumberedCopySearch {
 public:
  explicit NumberedCopySearch(std::string_view name);

  [[nodiscard]] bool isIn(std::string_view text) const;

 private:
  text::PatternAutomaton<char32_t> name_{};
};

}  // namespace vornix
