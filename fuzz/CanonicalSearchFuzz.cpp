#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "foundation/NSString+NSStringAdditions.h"
#include "foundation/NSString+URLAdditions.h"
#include "fuzz/support/Halves.h"
#include "fuzz/support/Require.h"
#include "platform/text/CanonicalSearch.h"
#include "platform/text/SequenceMatches.h"
#include "tests/support/CanonicalOracle.h"

using namespace vornix;

namespace {

// The work of the search by hand grows with the cube of the text.
constexpr std::size_t kLongestByHand = 64;

void checkAgainstSearchByHand(std::string_view text, std::string_view pattern) {
  text::CanonicalMatches matches(text, pattern);
  text::SequenceMatches sequences(text, pattern);
  std::size_t from = 0;
  for (;;) {
    const auto match = matches.next();
    fuzz::require(match == sequences.next());
    fuzz::require(match == tests::firstMatchByHand(text, pattern, from));
    if (!match) return;
    from = match->offset + match->length;
  }
}

}  // namespace

// The fast search finds what the plain one finds, whatever the texts.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto [pattern, text] = fuzz::halvesOf(data, size);
  const bool isShort = text.size() <= kLongestByHand && pattern.size() <= kLongestByHand;
  if (isShort && !pattern.empty()) checkAgainstSearchByHand(text, pattern);
  const std::string removed = stringByReplacingOccurrencesOfString(text, pattern, "");
  const bool isFound = text::containsCanonically(text, pattern);
  fuzz::require(isFound == (removed != text));
  fuzz::require(removed.size() <= text.size());
  if (isSubpathOf(text, pattern)) fuzz::require(isFound);
  return 0;
}
