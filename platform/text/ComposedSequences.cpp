#include "platform/text/ComposedSequences.h"

#include <algorithm>

#include "platform/text/CharacterProperties.h"

namespace vornix::text {
namespace {

// Nothing below is a mark or a Hangul letter.
constexpr char32_t kFirstMark = 0x300;

// The parts of a Hangul syllable: leading consonants, vowels, trailing consonants.
enum class Hangul { none, leading, vowel, trailing };

bool isSyllable(char32_t c) {
  return c >= 0xAC00 && c <= 0xD7A3;
}

Hangul letterKind(char32_t c) {
  if ((c >= 0x1100 && c <= 0x115F) || (c >= 0xA960 && c <= 0xA97C)) return Hangul::leading;
  if ((c >= 0x1160 && c <= 0x11A7) || (c >= 0xD7B0 && c <= 0xD7C6)) return Hangul::vowel;
  if ((c >= 0x11A8 && c <= 0x11FF) || (c >= 0xD7CB && c <= 0xD7FB)) return Hangul::trailing;
  return Hangul::none;
}

Hangul firstKind(char32_t c) {
  return isSyllable(c) ? Hangul::leading : letterKind(c);
}

Hangul lastKind(char32_t c) {
  constexpr char32_t trailingConsonants = 28;
  if (!isSyllable(c)) return letterKind(c);
  return (c - 0xAC00) % trailingConsonants == 0 ? Hangul::vowel : Hangul::trailing;
}

bool joinsSyllable(char32_t previous, char32_t next) {
  const Hangul before = lastKind(previous);
  const Hangul after = firstKind(next);
  switch (before) {
    case Hangul::leading:
      return after == Hangul::leading || after == Hangul::vowel;
    case Hangul::vowel:
      return after == Hangul::vowel || after == Hangul::trailing;
    case Hangul::trailing:
      return after == Hangul::trailing;
    case Hangul::none:
      return false;
  }
  return false;
}

bool continuesSequence(char32_t previous, char32_t next) {
  return next >= kFirstMark && (isMark(next) || joinsSyllable(previous, next));
}

// Marks in the order of their classes; those of one class, and what has none, stay where they are.
void orderMarks(std::u32string& characters) {
  // While it is sorted, a character carries its class above its own bits.
  constexpr unsigned classShift = 24;
  constexpr char32_t withoutClass = 0xFFFFFF;
  const auto classOf = [](char32_t c) { return c >> classShift; };
  for (char32_t& c : characters) c |= char32_t{combiningClass(c)} << classShift;
  auto run = characters.begin();
  while (run != characters.end()) {
    run = std::ranges::find_if(run, characters.end(), classOf);
    const auto end = std::ranges::find(run, characters.end(), char32_t{0}, classOf);
    std::ranges::stable_sort(run, end, {}, classOf);
    run = end;
  }
  for (char32_t& c : characters) c &= withoutClass;
}

}  // namespace

DecodedCharacter ComposedSequences::characterAt(std::size_t offset) const {
  return decodeCharacter(text_.substr(offset));
}

void ComposedSequences::take(char32_t character) {
  if (tooLong_) return;
  const FewCharacters parts = canonicalDecomposition(character);
  characters_ += parts.view();
  tooLong_ = characters_.size() > longest_;
}

bool ComposedSequences::next() {
  begin_ = end_;
  characters_.clear();
  tooLong_ = false;
  if (begin_ == text_.size()) return false;
  DecodedCharacter current = characterAt(begin_);
  end_ += current.length;
  if (!current.wellFormed) return true;
  take(current.codePoint);
  while (end_ < text_.size()) {
    const DecodedCharacter following = characterAt(end_);
    if (!following.wellFormed) break;
    if (!continuesSequence(current.codePoint, following.codePoint)) break;
    take(following.codePoint);
    end_ += following.length;
    current = following;
  }
  if (tooLong_) characters_.clear();
  if (characters_.size() > 1) orderMarks(characters_);
  return true;
}

}  // namespace vornix::text
