#include "foundation/NSString+URLAdditions.h"

#include <algorithm>

#include "platform/base/Format.h"
#include "platform/base/PercentEscapes.h"
#include "platform/text/CanonicalSearch.h"

namespace vornix {

std::string stringByReplacingOccurrencesOfString(std::string_view self, std::string_view target,
                                                 std::string_view withString) {
  std::string result;
  text::CanonicalMatches matches(self, target);
  std::size_t copied = 0;
  while (const auto match = matches.next()) {
    result.append(self.substr(copied, match->offset - copied)).append(withString);
    copied = match->offset + match->length;
  }
  return result.append(self.substr(copied));
}

std::string URLParamsStringWithDictionary(const Dictionary& dictionary) {
  std::string parameters;
  for (const auto& [key, value] : dictionary) {
    if (!parameters.empty()) parameters += '&';
    parameters += text::format("%@=%@", text::addingPercentEscapes(key),
                               text::addingPercentEscapes(value.description()));
  }
  return parameters;
}

std::optional<std::string> stringByEncodingURLEscapes(std::string_view self) {
  return text::addingPercentEscapesToAllButUnreserved(self);
}

std::optional<std::string> stringByDecodingURLEscapes(std::string_view self) {
  std::string spaced(self);
  std::ranges::replace(spaced, '+', ' ');
  return text::replacingPercentEscapes(spaced);
}

}  // namespace vornix
