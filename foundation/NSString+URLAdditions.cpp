#include "foundation/NSString+URLAdditions.h"

#include "platform/base/PercentEscapes.h"
#include "platform/base/Text.h"

namespace vornix {

std::optional<std::string> vnx_stringEncodedAsURL(std::string_view self) {
  const auto escaped = text::addingPercentEscapes(self);
  if (!escaped) return std::nullopt;
  return text::replaceAll(*escaped, "&", "%26");
}

}  // namespace vornix
