#pragma once

#include <cstdlib>
#include <optional>
#include <string>

#include "platform/linux/system/CMemory.h"

namespace vornix {

// The absolute path of an existing item, without links, "." and ".."; none, with `errno` set, when
// there is no such item or it cannot be looked up.
[[nodiscard]] inline std::optional<std::string> resolvedPath(const std::string& path) {
  const CMemory<char> resolved(canonicalize_file_name(path.c_str()));
  return resolved ? std::optional<std::string>(resolved.get()) : std::nullopt;
}

}  // namespace vornix
