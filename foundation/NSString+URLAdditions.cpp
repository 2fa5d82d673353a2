#include "foundation/NSString+URLAdditions.h"

#include <algorithm>

#include "platform/base/PercentEscapes.h"
#include "platform/base/Text.h"

namespace vornix {

std::optional<std::string> vnx_stringEncodedAsURL(std::string_view self) {
  const auto escaped = text::addingPercentEscapes(self);
  if (!escaped) return std::nullopt;
  return text::replaceAll(*escaped, "&", "%26");
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
