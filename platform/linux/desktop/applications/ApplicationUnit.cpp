#include "platform/linux/desktop/applications/ApplicationUnit.h"

#include "platform/base/Text.h"

namespace vornix::desktop {
namespace {

constexpr std::string_view kPrefix = "app-";
constexpr std::string_view kHexDigits = "0123456789abcdef";

int valueOfHexDigit(char digit) {
  const auto at = kHexDigits.find(text::asciiLowercase(std::string_view(&digit, 1)));
  return at == std::string_view::npos ? -1 : static_cast<int>(at);
}

// The byte that "\xNN" at the start of `text` stands for, or -1.
int escapedByte(std::string_view text) {
  if (text.size() < 4 || !text.starts_with("\\x")) return -1;
  const int high = valueOfHexDigit(text[2]);
  const int low = valueOfHexDigit(text[3]);
  return high < 0 || low < 0 ? -1 : high * 16 + low;
}

std::string unescaped(std::string_view piece) {
  std::string text;
  while (!piece.empty()) {
    const int byte = escapedByte(piece);
    text += byte > 0 ? static_cast<char>(byte) : piece.front();
    piece.remove_prefix(byte > 0 ? 4 : 1);
  }
  return text;
}

bool isPlain(char letter) {
  return text::isAsciiLetterOrDigit(letter) || letter == '.' || letter == '_' || letter == ':';
}

std::string escaped(std::string_view identifier) {
  std::string text;
  for (const char letter : identifier) {
    if (isPlain(letter)) {
      text += letter;
      continue;
    }
    const auto byte = static_cast<unsigned char>(letter);
    text += "\\x";
    text += kHexDigits[byte >> 4U];
    text += kHexDigits[byte & 15U];
  }
  return text;
}

using Pieces = std::vector<std::string>;

// Without a random part behind an "@" the second of two pieces is either the random part or, after
// a launcher, the identifier.
std::vector<std::string> candidates(const Pieces& pieces, bool isScope, bool isInstance) {
  switch (pieces.size()) {
    case 1:
      return isScope ? Pieces() : Pieces{pieces[0]};
    case 2:
      if (isScope) return {pieces[0]};
      if (isInstance) return {pieces[1]};
      return {pieces[0], pieces[1]};
    case 3:
      return isInstance ? Pieces() : Pieces{pieces[1]};
    default:
      return {};
  }
}

}  // namespace

std::vector<std::string> identifiersOfUnit(std::string_view unit) {
  const bool isScope = unit.ends_with(".scope");
  if (!unit.starts_with(kPrefix) || !(isScope || unit.ends_with(".service"))) return {};
  unit = unit.substr(kPrefix.size(), unit.rfind('.') - kPrefix.size());
  const auto instance = isScope ? std::string_view::npos : unit.find('@');
  const bool isInstance = instance != std::string_view::npos;
  Pieces pieces = text::split(unit.substr(0, instance), "-");
  for (std::string& piece : pieces) {
    piece = unescaped(piece);
    if (piece.empty()) return {};
  }
  return candidates(pieces, isScope, isInstance);
}

std::optional<std::string> applicationUnitPath(std::string_view controlGroup) {
  while (!controlGroup.empty() && controlGroup != "/") {
    const auto slash = controlGroup.rfind('/');
    const auto start = slash == std::string_view::npos ? 0 : slash + 1;
    if (!identifiersOfUnit(controlGroup.substr(start)).empty()) return std::string(controlGroup);
    controlGroup = controlGroup.substr(0, start == 0 ? 0 : slash);
  }
  return std::nullopt;
}

std::string serviceUnitName(std::string_view identifier, std::string_view random) {
  return std::string(kPrefix) + escaped(identifier) + "-" + std::string(random) + ".service";
}

}  // namespace vornix::desktop
