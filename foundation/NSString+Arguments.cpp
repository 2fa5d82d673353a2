#include "foundation/NSString+Arguments.h"

#include <algorithm>

#include "platform/base/Text.h"

namespace vornix {

std::string stringByRemovingSemicolonSeparatedString(std::string_view self,
                                                     std::string_view string) {
  std::string kept;
  bool isFirst = true;
  for (std::size_t begin = 0; begin <= self.size();) {
    const std::size_t end = std::min(self.find(':', begin), self.size());
    const std::string_view entry = text::trim(self.substr(begin, end - begin));
    begin = end + 1;
    if (entry == string) continue;
    if (!isFirst) kept += ':';
    kept += entry;
    isFirst = false;
  }
  return kept;
}

}  // namespace vornix
