#include "platform/base/PathText.h"

#include <algorithm>

#include "platform/base/Utf8.h"

namespace vornix::text {
namespace {

std::string_view lastComponent(std::string_view path) {
  path = withoutTrailingSlashes(path);
  if (path == "/") return path;
  const auto slash = path.rfind('/');
  return slash == std::string_view::npos ? path : path.substr(slash + 1);
}

std::string squeezed(std::string_view path) {
  std::string result(withoutTrailingSlashes(path));
  const auto areSlashes = [](char left, char right) { return left == '/' && right == '/'; };
  result.erase(std::unique(result.begin(), result.end(), areSlashes), result.end());
  return result;
}

bool endsExtensionSearch(char32_t c) {
  return c == U' ' || c == 0x061C || c == 0x200E || c == 0x200F || (c >= 0x202A && c <= 0x202E) ||
         (c >= 0x2066 && c <= 0x2069);
}

// The position of the dot that starts the extension, or npos.
std::size_t extensionDot(std::string_view name) {
  const auto dot = name.rfind('.');
  if (dot == std::string_view::npos || dot == 0 || dot + 1 == name.size()) {
    return std::string_view::npos;
  }
  if (name.starts_with("..") && dot == 1) return std::string_view::npos;
  for (auto rest = name.substr(dot + 1); !rest.empty();) {
    const DecodedCharacter character = decodeCharacter(rest);
    if (endsExtensionSearch(character.codePoint)) return std::string_view::npos;
    rest.remove_prefix(character.length);
  }
  return dot;
}

}  // namespace

std::string_view withoutTrailingSlashes(std::string_view path) {
  while (path.size() > 1 && path.back() == '/') path.remove_suffix(1);
  return path;
}

std::string lastPathComponent(std::string_view path) {
  return std::string(lastComponent(path));
}

std::string pathExtension(std::string_view path) {
  const std::string_view name = lastComponent(path);
  const auto dot = extensionDot(name);
  return dot == std::string_view::npos ? std::string() : std::string(name.substr(dot + 1));
}

std::string deletingPathExtension(std::string_view path) {
  std::string result = squeezed(path);
  const std::string_view name = lastComponent(result);
  const auto dot = extensionDot(name);
  if (dot != std::string_view::npos) result.resize(result.size() - (name.size() - dot));
  return result;
}

std::string deletingLastPathComponent(std::string_view path) {
  const std::string whole = squeezed(path);
  const auto slash = whole.rfind('/');
  if (slash == std::string::npos) return {};
  return slash == 0 ? "/" : whole.substr(0, slash);
}

std::string appendingPathComponent(std::string_view path, std::string_view component) {
  if (path.empty()) return squeezed(component);
  std::string joined;
  joined.reserve(path.size() + 1 + component.size());
  return squeezed(joined.append(path).append("/").append(component));
}

}  // namespace vornix::text
