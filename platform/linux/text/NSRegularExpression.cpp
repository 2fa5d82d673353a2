#include "platform/text/NSRegularExpression.h"
#include "platform/base/Mutex.h"

#include <limits>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/base/Utf8.h"
#include "platform/linux/text/Icu.h"

namespace vornix {
namespace {

constexpr NSRange kNoMatch{NSNotFound, 0};

// NSFormattingError of the Cocoa domain.
NSError patternError(std::string_view pattern) {
  NSError error;
  error.domain = NSCocoaErrorDomain;
  error.code = 2048;
  error.localizedDescription = "The value \u201C" + std::string(pattern) + "\u201D is invalid.";
  return error;
}

struct ExpressionCloser {
  decltype(&uregex_close) close;
  void operator()(URegularExpression* expression) const { close(expression); }
};
using Expression = std::unique_ptr<URegularExpression, ExpressionCloser>;

constexpr std::size_t kMostUnits = std::numeric_limits<std::int32_t>::max();

// A text as the engine wants it.
struct Units {
  std::u16string units;
  bool hasIllFormedByte = false;

  explicit Units(std::string_view text) {
    units.reserve(text.size());
    while (!text.empty()) {
      const auto character = text::decodeCharacter(text);
      hasIllFormedByte = hasIllFormedByte || !character.wellFormed;
      text::appendUnits(units, character.wellFormed ? character.codePoint : U'\uFFFD');
      text.remove_prefix(character.length);
    }
  }
};

// The places in a text that nothing may match, in units and from the left. There may be as many as
// bytes, so they are found anew instead of being kept.
class IllFormedPlaces {
 public:
  explicit IllFormedPlaces(std::string_view text) : rest_(text) {}

  std::optional<std::size_t> next() {
    while (!rest_.empty()) {
      const auto character = text::decodeCharacter(rest_);
      const std::size_t place = units_;
      units_ += character.codePoint > 0xFFFF ? 2 : 1;
      rest_.remove_prefix(character.length);
      if (!character.wellFormed) return place;
    }
    return std::nullopt;
  }

 private:
  std::string_view rest_;
  std::size_t units_ = 0;
};

class IcuRegularExpression final : public NSRegularExpression {
 public:
  IcuRegularExpression(const IcuExpressions& icu, Expression expression)
      : icu_(icu), master_(std::move(expression)) {}

  [[nodiscard]] NSRange rangeOfFirstMatchInString(std::string_view string,
                                                  NSMatchingOptions /*options*/,
                                                  NSRange range) const override {
    if (range.length > kMostUnits) return kNoMatch;
    const Units text(string);
    const std::size_t size = text.units.size();
    if (range.location > size || range.length > size - range.location) return kNoMatch;
    Expression matcher = takeMatcher();
    if (matcher == nullptr) return kNoMatch;
    const NSRange match = firstMatch(
        matcher.get(), std::u16string_view(text.units).substr(range.location, range.length),
        IllFormedPlaces(text.hasIllFormedByte ? string : ""), range.location);
    giveBack(std::move(matcher));
    return match;
  }

 private:
  // The text is searched piece by piece between ill-formed bytes; the engine sees all of it, so
  // that a piece's end is no end of the text.
  [[nodiscard]] NSRange firstMatch(URegularExpression* matcher, std::u16string_view searched,
                                   IllFormedPlaces places, std::size_t location) const {
    UErrorCode error = U_ZERO_ERROR;
    icu_.setText(matcher, searched.data(), static_cast<std::int32_t>(searched.size()), &error);
    std::size_t from = 0;
    while (const auto place = places.next()) {
      if (*place < location) continue;
      const std::size_t to = *place - location;
      if (to >= searched.size()) break;
      const auto match = matchWithin(matcher, from, to, error);
      if (match || U_FAILURE(error)) return shifted(match, location);
      from = to + 1;
    }
    return shifted(matchWithin(matcher, from, searched.size(), error), location);
  }

  [[nodiscard]] std::optional<NSRange> matchWithin(URegularExpression* matcher, std::size_t from,
                                                   std::size_t to, UErrorCode& error) const {
    icu_.setRegion(matcher, static_cast<std::int32_t>(from), static_cast<std::int32_t>(to), &error);
    constexpr std::int32_t fromRegionStart = -1;
    const bool found = icu_.find(matcher, fromRegionStart, &error) != 0;
    if (!found || U_FAILURE(error)) return std::nullopt;
    const auto start = static_cast<std::uint64_t>(icu_.start(matcher, 0, &error));
    const auto end = static_cast<std::uint64_t>(icu_.end(matcher, 0, &error));
    return NSRange{start, end - start};
  }

  static NSRange shifted(const std::optional<NSRange>& match, std::uint64_t location) {
    return match ? NSRange{match->location + location, match->length} : kNoMatch;
  }

  // A matcher belongs to one search at a time; those of earlier searches are used again.
  [[nodiscard]] Expression takeMatcher() const {
    const Lock lock(mutex_);
    if (!idle_.empty()) {
      Expression matcher = std::move(idle_.back());
      idle_.pop_back();
      return matcher;
    }
    UErrorCode error = U_ZERO_ERROR;
    Expression matcher(icu_.clone(master_.get(), &error), ExpressionCloser{icu_.close});
    if (matcher == nullptr || U_FAILURE(error)) return nullptr;
    icu_.useAnchoringBounds(matcher.get(), 0, &error);
    icu_.useTransparentBounds(matcher.get(), 1, &error);
    return matcher;
  }

  void giveBack(Expression matcher) const {
    UErrorCode error = U_ZERO_ERROR;
    icu_.setText(matcher.get(), u"", 0, &error);
    const Lock lock(mutex_);
    idle_.push_back(std::move(matcher));
  }

  const IcuExpressions& icu_;
  Expression master_;
  mutable Mutex mutex_;
  mutable std::vector<Expression> idle_ VORNIX_GUARDED_BY(mutex_);
};

Expression compiled(const IcuExpressions& icu, std::string_view pattern,
                    NSRegularExpressionOptions options) {
  const bool usable = !pattern.empty() && text::utf16Length(pattern) <= kMostUnits &&
                      !text::hasIllFormedByte(pattern);
  if (!usable) return {nullptr, ExpressionCloser{icu.close}};
  const Units text(pattern);
  const std::uint32_t flags =
      options == NSRegularExpressionOptions::caseInsensitive ? UREGEX_CASE_INSENSITIVE : 0;
  UErrorCode error = U_ZERO_ERROR;
  Expression expression(icu.open(text.units.data(), static_cast<std::int32_t>(text.units.size()),
                                 flags, nullptr, &error),
                        ExpressionCloser{icu.close});
  if (U_FAILURE(error)) expression.reset();
  return expression;
}

}  // namespace

std::shared_ptr<const NSRegularExpression> NSRegularExpression::regularExpressionWithPattern(
    std::string_view pattern, NSRegularExpressionOptions options, std::optional<NSError>* error) {
  if (const IcuExpressions* icu = IcuExpressions::shared()) {
    if (Expression expression = compiled(*icu, pattern, options)) {
      return std::make_shared<IcuRegularExpression>(*icu, std::move(expression));
    }
  }
  if (error != nullptr) *error = patternError(pattern);
  return nullptr;
}

}  // namespace vornix
