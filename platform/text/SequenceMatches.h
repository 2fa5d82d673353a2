#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "platform/text/CanonicalSearch.h"
#include "platform/text/CompactLengths.h"
#include "platform/text/ComposedSequences.h"
#include "platform/text/PatternAutomaton.h"

namespace vornix::text {

// The search behind `CanonicalMatches` for texts that are not both ASCII: it compares composed
// sequence by composed sequence, and looks at each of the text's only once.
class SequenceMatches {
 public:
  SequenceMatches(std::string_view text, std::string_view pattern);

  [[nodiscard]] std::optional<ByteRange> next();

 private:
  // Equal sequences of the pattern have one number; all others have none.
  using Number = std::uint32_t;
  static constexpr Number kNoNumber = std::numeric_limits<Number>::max();

  struct Hash {
    using is_transparent = void;
    std::size_t operator()(std::u32string_view characters) const {
      return std::hash<std::u32string_view>{}(characters);
    }
  };
  using Numbers = std::unordered_map<std::u32string, Number, Hash, std::equal_to<>>;

  // Answers how many characters the pattern's longest sequence has. A pattern that needs more
  // characters than `most` is not read further.
  std::size_t readPattern(std::string_view pattern, std::size_t most);
  Number numberFor(std::u32string_view characters);
  [[nodiscard]] Number numberOf(std::u32string_view characters) const;

  Numbers numbers_{};
  // The same for sequences of one ASCII character.
  std::array<Number, 128> asciiNumbers_{};
  // Empty where nothing can match.
  PatternAutomaton<Number> pattern_{};
  ComposedSequences sequences_;
  // Where the latest sequences of the text began, as many as the pattern has.
  CompactLengths<> begins_{};
  std::size_t seen_ = 0;
};

}  // namespace vornix::text
