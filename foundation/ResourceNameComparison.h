#pragma once

#include <string_view>

// The two questions behind `compareApplicationResourceNameByWords`. Those ending in "Generally"
// take the way that serves all texts, the others a shorter one where they can; the answers are the
// same.
namespace vornix {

// Whether every word of `name` is a word of `other`, without regard to case. Words stand between
// separators; a separator counts as it is, after the texts have been put in lower case.
[[nodiscard]] bool holdsEveryWord(std::string_view other, std::string_view name,
                                  std::string_view separator);
[[nodiscard]] bool holdsEveryWordGenerally(std::string_view other, std::string_view name,
                                           std::string_view separator);

// Whether "(name)( )*[0-9]+" matches somewhere in `other`, without regard to case; false where that
// is no regular expression.
[[nodiscard]] bool holdsNumberedCopy(std::string_view other, std::string_view name);
[[nodiscard]] bool holdsNumberedCopyGenerally(std::string_view other, std::string_view name);

}  // namespace vornix
