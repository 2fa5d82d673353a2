#include "platform/linux/files/CanonicalPath.h"

#include <cerrno>
#include <cstdlib>
#include <memory>

#include "platform/base/PathText.h"

namespace vornix {
namespace {

struct Free {
  void operator()(char* text) const { std::free(text); }  // NOLINT(cppcoreguidelines-no-malloc)
};

std::optional<std::string> withoutLinks(const std::string& path) {
  const std::unique_ptr<char, Free> resolved(canonicalize_file_name(path.c_str()));
  return resolved ? std::optional<std::string>(resolved.get()) : std::nullopt;
}

}  // namespace

std::optional<std::string> canonicalPathOf(std::string_view path) {
  if (path.empty() || path.find('\0') != std::string_view::npos) {
    errno = ENOENT;
    return std::nullopt;
  }
  const auto slash = path.rfind('/');
  const std::string_view name = slash == std::string_view::npos ? path : path.substr(slash + 1);
  if (name.empty() || name == "." || name == "..") return withoutLinks(std::string(path));
  const std::string_view folder = slash == std::string_view::npos ? "." : path.substr(0, slash + 1);
  const auto whole = withoutLinks(std::string(folder));
  return whole ? std::optional(text::appendingPathComponent(*whole, name)) : std::nullopt;
}

}  // namespace vornix
