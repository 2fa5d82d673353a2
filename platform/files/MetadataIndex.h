#pragma once

#include <optional>
#include <string_view>

#include "platform/base/Value.h"

namespace vornix {

// What an index of the machine's documents holds about items, by these names.
inline constexpr std::string_view kMDItemLastUsedDate = "kMDItemLastUsedDate";
inline constexpr std::string_view kMDItemContentModificationDate = "kMDItemContentModificationDate";

// Any thread.
class MetadataIndex {
 public:
  virtual ~MetadataIndex() = default;

  // None for an item that the index does not know, which is every item where there is no index.
  [[nodiscard]] virtual std::optional<Dictionary> itemAtPath(std::string_view path) const = 0;
};

// The process's own, never destroyed.
[[nodiscard]] const MetadataIndex& sharedMetadataIndex();

}  // namespace vornix
