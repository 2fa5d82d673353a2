#pragma once

#include <memory>
#include <optional>
#include <string_view>

#include "platform/base/NSError.h"
#include "platform/base/Utf16.h"

namespace vornix {

enum class NSRegularExpressionOptions { none, caseInsensitive };
enum class NSMatchingOptions { none };

// A compiled regular expression: Unicode's classes and case folding, one code point for each ".",
// "^" and "$" at the ends of the text only, no canonical equivalence. Any number of threads may use
// one at the same time.
class NSRegularExpression {
 public:
  virtual ~NSRegularExpression() = default;

  // Null, and why in `error`, for a pattern that does not compile, the empty one and one with
  // ill-formed bytes among them.
  [[nodiscard]] static std::shared_ptr<const NSRegularExpression> regularExpressionWithPattern(
      std::string_view pattern, NSRegularExpressionOptions options,
      std::optional<NSError>* error = nullptr);

  // Searches the units of `range` as if they were the whole text. An empty match counts as found.
  // The location is `NSNotFound` where there is none, where the range leaves the text, and where
  // the search would take more memory than it may. No match takes in an ill-formed byte.
  [[nodiscard]] virtual NSRange rangeOfFirstMatchInString(std::string_view string,
                                                          NSMatchingOptions options,
                                                          NSRange range) const = 0;
};

}  // namespace vornix
