#include "platform/base/Utf16.h"

#include "platform/base/Utf8.h"

namespace vornix::text {
namespace {

constexpr char32_t kFirstSupplementary = 0x10000;

bool isLead(char32_t unit) {
  return unit >= 0xD800 && unit < 0xDC00;
}
bool isTrail(char32_t unit) {
  return unit >= 0xDC00 && unit < 0xE000;
}
char32_t leadOf(char32_t supplementary) {
  return 0xD800 + ((supplementary - kFirstSupplementary) >> 10U);
}
char32_t trailOf(char32_t supplementary) {
  return 0xDC00 + ((supplementary - kFirstSupplementary) & 0x3FFU);
}

std::uint64_t unitsOf(const DecodedCharacter& character) {
  return character.codePoint >= kFirstSupplementary ? 2 : 1;
}

// Takes units from the front of a text.
class UnitReader {
 public:
  explicit UnitReader(std::string_view text) : rest_(text) {}

  // The next `count` units go to `taken`, or to nowhere when that is null. False when there are not
  // so many.
  bool take(std::uint64_t count, std::string* taken) {
    if (count > 0 && pendingTrail_ != 0) {
      append(taken, pendingTrail_);
      pendingTrail_ = 0;
      --count;
    }
    while (count > 0) {
      if (rest_.empty()) return false;
      const DecodedCharacter character = decodeCharacter(rest_);
      if (unitsOf(character) > count) {
        append(taken, leadOf(character.codePoint));
        pendingTrail_ = trailOf(character.codePoint);
        count = 0;
      } else {
        if (taken != nullptr) taken->append(rest_.substr(0, character.length));
        count -= unitsOf(character);
      }
      rest_.remove_prefix(character.length);
    }
    return true;
  }

 private:
  static void append(std::string* taken, char32_t unit) {
    if (taken != nullptr) appendCharacter(*taken, unit);
  }

  std::string_view rest_;
  char32_t pendingTrail_ = 0;
};

}  // namespace

std::size_t utf16Length(std::string_view text) {
  if (isAscii(text)) return text.size();
  std::size_t length = 0;
  while (!text.empty()) {
    const DecodedCharacter character = decodeCharacter(text);
    length += unitsOf(character);
    text.remove_prefix(character.length);
  }
  return length;
}

std::optional<std::string> substringOfUnits(std::string_view text, NSRange range) {
  // No text has more units than bytes.
  if (range.location > text.size() || range.length > text.size() - range.location) {
    return std::nullopt;
  }
  if (isAscii(text)) return std::string(text.substr(range.location, range.length));
  UnitReader reader(text);
  std::string taken;
  if (!reader.take(range.location, nullptr) || !reader.take(range.length, &taken)) {
    return std::nullopt;
  }
  return taken;
}

void appendUnits(std::u16string& units, char32_t character) {
  if (character >= kFirstSupplementary) {
    units += static_cast<char16_t>(leadOf(character));
    units += static_cast<char16_t>(trailOf(character));
  } else {
    units += static_cast<char16_t>(character);
  }
}

std::string textOfUnits(std::u16string_view units) {
  std::string text;
  text.reserve(units.size());
  for (std::size_t index = 0; index < units.size(); ++index) {
    char32_t character = units[index];
    const bool paired = isLead(character) && index + 1 < units.size() && isTrail(units[index + 1]);
    if (paired) {
      const char32_t trail = units[++index];
      character = kFirstSupplementary + ((character - 0xD800) << 10U) + (trail - 0xDC00);
    }
    appendCharacter(text, character);
  }
  return text;
}

}  // namespace vornix::text
