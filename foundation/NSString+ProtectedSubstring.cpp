#include "foundation/NSString+ProtectedSubstring.h"

namespace vornix {

std::string substringWithRangeProtected(std::string_view self, NSRange range) {
  return text::substringOfUnits(self, range).value_or("");
}

}  // namespace vornix
