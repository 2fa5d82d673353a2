#include "platform/linux/files/UserDirectories.h"

#include <algorithm>

#include "platform/base/PathText.h"

namespace vornix {
namespace {

constexpr std::string_view kBlanks = " \t\r\v\f";
constexpr std::string_view kHome = "$HOME";

void skipBlanks(std::string_view& text) {
  text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
}

bool take(std::string_view& text, std::string_view expected) {
  if (!text.starts_with(expected)) return false;
  text.remove_prefix(expected.size());
  return true;
}

// The text up to the closing quote, its escapes resolved; none where the quote is missing or the
// shell would put something else in the place of a part.
std::optional<std::string> takeQuoted(std::string_view& text) {
  std::string result;
  while (!text.empty()) {
    char letter = text.front();
    text.remove_prefix(1);
    if (letter == '"') return result;
    if (letter == '$' || letter == '`') return std::nullopt;
    if (letter == '\\') {
      if (text.empty()) return std::nullopt;
      letter = text.front();
      text.remove_prefix(1);
    }
    result += letter;
  }
  return std::nullopt;
}

bool isEnd(std::string_view text) {
  skipBlanks(text);
  return text.empty() || text.starts_with('#');
}

std::optional<std::string> pathOfValue(std::string_view value, std::string_view home) {
  if (!take(value, "\"")) return std::nullopt;
  const bool inHome = take(value, kHome);
  const auto path = takeQuoted(value);
  if (!path || !isEnd(value) || path->find('\0') != std::string::npos) return std::nullopt;
  if (!path->starts_with('/') && !(inHome && path->empty())) return std::nullopt;
  return text::appendingPathComponent(inHome ? home : "/", *path);
}

std::optional<std::string> pathOfLine(std::string_view line, std::string_view key,
                                      std::string_view home) {
  skipBlanks(line);
  if (!take(line, key)) return std::nullopt;
  skipBlanks(line);
  if (!take(line, "=")) return std::nullopt;
  skipBlanks(line);
  return pathOfValue(line, home);
}

}  // namespace

std::optional<std::string> userDirectory(std::string_view contents, std::string_view key,
                                         std::string_view home) {
  std::optional<std::string> result;
  while (!contents.empty()) {
    const std::size_t length = std::min(contents.find('\n'), contents.size());
    if (auto path = pathOfLine(contents.substr(0, length), key, home)) result = std::move(path);
    contents.remove_prefix(std::min(length + 1, contents.size()));
  }
  return result;
}

}  // namespace vornix
