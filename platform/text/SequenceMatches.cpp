#include "platform/text/SequenceMatches.h"

#include <algorithm>

#include "platform/base/Utf16.h"

namespace vornix::text {
namespace {

// Into so many characters one of a text may come apart.
constexpr std::size_t kMostParts = 4;

bool isOneAsciiCharacter(std::u32string_view characters) {
  return characters.size() == 1 && characters.front() < 0x80;
}

}  // namespace

SequenceMatches::SequenceMatches(std::string_view text, std::string_view pattern)
    : sequences_(text, 0, readPattern(pattern, utf16Length(text))) {
  for (std::size_t count = 0; count < pattern_.size(); ++count) begins_.append(0);
}

std::size_t SequenceMatches::readPattern(std::string_view pattern, std::size_t most) {
  asciiNumbers_.fill(kNoNumber);
  std::size_t longest = 0;
  ComposedSequences sequences(pattern, 0, most * kMostParts);
  while (sequences.next()) {
    if (sequences.characters().empty() || pattern_.size() == most) {
      pattern_ = {};
      return 0;
    }
    longest = std::max(longest, sequences.characters().size());
    pattern_.append(numberFor(sequences.characters()));
  }
  return longest;
}

SequenceMatches::Number SequenceMatches::numberFor(std::u32string_view characters) {
  const auto next = static_cast<Number>(numbers_.size());
  const auto [entry, isNew] = numbers_.try_emplace(std::u32string(characters), next);
  if (isNew && isOneAsciiCharacter(characters)) asciiNumbers_.at(characters.front()) = next;
  return entry->second;
}

SequenceMatches::Number SequenceMatches::numberOf(std::u32string_view characters) const {
  if (isOneAsciiCharacter(characters)) return asciiNumbers_.at(characters.front());
  const auto entry = numbers_.find(characters);
  return entry != numbers_.end() ? entry->second : kNoNumber;
}

std::optional<ByteRange> SequenceMatches::next() {
  if (pattern_.empty()) return std::nullopt;
  std::size_t matched = 0;
  while (sequences_.next()) {
    begins_.replace(seen_++ % begins_.size(), sequences_.begin());
    matched = pattern_.advanced(matched, numberOf(sequences_.characters()));
    if (matched == pattern_.size()) {
      const std::size_t begin = begins_[seen_ % begins_.size()];
      return ByteRange{begin, sequences_.end() - begin};
    }
  }
  return std::nullopt;
}

}  // namespace vornix::text
