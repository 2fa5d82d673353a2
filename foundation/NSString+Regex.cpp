#include "foundation/NSString+Regex.h"

namespace vornix {

bool isMatchedByRegex(std::string_view self, const NSRegularExpression& regex) {
  const NSRange whole{0, text::utf16Length(self)};
  const auto match = regex.rangeOfFirstMatchInString(self, NSMatchingOptions::none, whole);
  return match.location != NSNotFound;
}

}  // namespace vornix
