#include "platform/base/FileUrl.h"

#include "platform/base/PercentEscapes.h"
#include "platform/base/Text.h"

namespace vornix::text {
namespace {

constexpr std::string_view kScheme = "file://";
constexpr std::string_view kLocalHost = "localhost";
constexpr std::string_view kDigits = "0123456789ABCDEF";

bool isPlain(char letter) {
  return isAsciiLetterOrDigit(letter) ||
         std::string_view("-._~/").find(letter) != std::string_view::npos;
}

}  // namespace

std::string percentEscapedPath(std::string_view path) {
  std::string escaped;
  for (const char letter : path) {
    if (isPlain(letter)) {
      escaped += letter;
      continue;
    }
    const auto byte = static_cast<unsigned char>(letter);
    escaped += '%';
    escaped += kDigits[byte >> 4U];
    escaped += kDigits[byte & 15U];
  }
  return escaped;
}

std::optional<std::string> fileUrlWithPath(std::string_view path, bool isDirectory) {
  if (!path.starts_with('/')) return std::nullopt;
  std::string url = std::string(kScheme) + percentEscapedPath(path);
  if (isDirectory && !url.ends_with('/')) url += '/';
  return url;
}

std::optional<std::string> pathOfFileUrl(std::string_view url) {
  if (!asciiEqualIgnoringCase(url.substr(0, kScheme.size()), kScheme)) return std::nullopt;
  url.remove_prefix(kScheme.size());
  if (url.starts_with(kLocalHost)) url.remove_prefix(kLocalHost.size());
  if (!url.starts_with('/')) return std::nullopt;
  auto path = bytesOfPercentEscapes(url);
  const bool canNamePath = path && path->find('\0') == std::string::npos;
  if (!canNamePath) return std::nullopt;
  while (path->size() > 1 && path->ends_with('/')) path->pop_back();
  return path;
}

}  // namespace vornix::text
