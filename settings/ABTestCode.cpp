#include "settings/ABTestCode.h"

#include <cstddef>
#include <limits>
#include <optional>

#include "platform/base/DecimalDigit.h"
#include "platform/base/Text.h"
#include "platform/base/Utf8.h"

namespace vornix {
namespace {

constexpr std::int64_t kNoNumber = std::numeric_limits<std::int64_t>::max();

// Both scans pass over leading white space, and consume nothing when they find nothing.
class CodeScanner {
 public:
  explicit CodeScanner(std::string_view code) : rest_(code) {}

  [[nodiscard]] bool isAtEnd() const { return text::trim(rest_).empty(); }
  [[nodiscard]] std::size_t remaining() const { return rest_.size(); }

  std::optional<std::int64_t> scanInteger() {
    const std::string_view number = withoutLeadingBlanks();
    const bool hasSign = number.starts_with('-') || number.starts_with('+');
    std::size_t end = hasSign ? 1 : 0;
    const std::size_t firstDigit = end;
    while (end < number.size() && text::isAsciiDigit(number[end])) ++end;
    if (end == firstDigit) return std::nullopt;
    rest_ = number.substr(end);
    return text::integerValue(number.substr(0, end));
  }

  std::string_view scanUpToDigit() {
    const std::string_view letters = withoutLeadingBlanks();
    std::size_t end = 0;
    while (end < letters.size()) {
      const auto character = text::decodeCharacter(letters.substr(end));
      if (character.wellFormed && text::isDecimalDigit(character.codePoint)) break;
      end += character.length;
    }
    if (end > 0) rest_ = letters.substr(end);
    return letters.substr(0, end);
  }

 private:
  [[nodiscard]] std::string_view withoutLeadingBlanks() const {
    const std::string_view trimmed = text::trim(rest_);
    if (trimmed.empty()) return {};
    return rest_.substr(static_cast<std::size_t>(trimmed.data() - rest_.data()));
  }

  std::string_view rest_;
};

}  // namespace

std::vector<ABTestCodePiece> parseABTestCode(std::string_view code) {
  std::vector<ABTestCodePiece> pieces;
  CodeScanner scanner(code);
  while (!scanner.isAtEnd()) {
    const std::size_t before = scanner.remaining();
    const std::int64_t number = scanner.scanInteger().value_or(kNoNumber);
    const std::string_view letters = scanner.scanUpToDigit();
    if (number != kNoNumber) pieces.emplace_back(number, letters);
    // A digit of another script ends the letters and starts no number.
    if (scanner.remaining() == before) break;
  }
  return pieces;
}

}  // namespace vornix
