#include "platform/files/PropertyListFile.h"

#include <utility>

namespace vornix {

std::optional<Dictionary> dictionaryWithContentsOfFile(std::string_view path,
                                                       const ResourceFiles& files) {
  const auto bytes = files.contents(path);
  auto value = bytes ? files.parsePropertyList(*bytes) : std::nullopt;
  auto* dictionary = value ? value->as<Dictionary>() : nullptr;
  return dictionary != nullptr ? std::optional(std::move(*dictionary)) : std::nullopt;
}

}  // namespace vornix
