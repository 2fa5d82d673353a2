#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "foundation/NSString+NSStringAdditions.h"
#include "foundation/NSString+Regex.h"
#include "foundation/NumberedCopyExpressions.h"
#include "foundation/ResourceNameComparison.h"
#include "fuzz/support/Halves.h"
#include "fuzz/support/Require.h"
#include "platform/base/Text.h"

using namespace vornix;

namespace {

constexpr std::size_t kLongest = 64;

// The engine takes back what it tried, and so, for some expressions, longer than anybody waits.
// Such names are not compared here.
bool isSoonDone(std::string_view name) {
  const auto quantifiers = std::ranges::count_if(
      name, [](char c) { return std::string_view("*+?{").find(c) != std::string_view::npos; });
  return quantifiers == 0 || (quantifiers <= 2 && name.find('(') == std::string_view::npos);
}

}  // namespace

// The short ways answer as the general ones, and plain names as the regular expression they are.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto [name, other] = fuzz::halvesOf(data, size);
  if (name.size() > kLongest || other.size() > kLongest || !isSoonDone(name)) return 0;
  const bool hasWords = holdsEveryWord(other, name, " ");
  const bool isCopy = holdsNumberedCopy(other, name);
  fuzz::require(hasWords == holdsEveryWordGenerally(other, name, " "));
  fuzz::require(isCopy == holdsNumberedCopyGenerally(other, name));
  const int expected = hasWords && !isCopy ? 0 : -1;
  fuzz::require(compareApplicationResourceNameByWords(name, other, " ") == expected);
  if (!text::isValidUtf8(name) || !text::isValidUtf8(other)) return 0;
  const auto expression = numberedCopyExpression(name);
  fuzz::require(isCopy == (expression != nullptr && isMatchedByRegex(other, *expression)));
  return 0;
}
