#include "platform/linux/files/CanonicalPath.h"

#include <cerrno>

#include "platform/base/PathText.h"
#include "platform/linux/system/ResolvedPath.h"

namespace vornix {
std::optional<std::string> canonicalPathOf(std::string_view path) {
  if (path.empty() || path.find('\0') != std::string_view::npos) {
    errno = ENOENT;
    return std::nullopt;
  }
  const auto slash = path.rfind('/');
  const std::string_view name = slash == std::string_view::npos ? path : path.substr(slash + 1);
  if (name.empty() || name == "." || name == "..") return resolvedPath(std::string(path));
  const std::string_view folder = slash == std::string_view::npos ? "." : path.substr(0, slash + 1);
  const auto whole = resolvedPath(std::string(folder));
  return whole ? std::optional(text::appendingPathComponent(*whole, name)) : std::nullopt;
}

}  // namespace vornix
