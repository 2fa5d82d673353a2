#pragma once

#include <optional>
#include <string_view>

#include "platform/base/Value.h"
#include "platform/system/ResourceFiles.h"

namespace vornix {

// A property list, binary or XML, with keys at its top. None for anything else and for a file that
// is missing or cannot be read.
[[nodiscard]] std::optional<Dictionary> dictionaryWithContentsOfFile(
    std::string_view path, const ResourceFiles& files = sharedResourceFiles());

}  // namespace vornix
