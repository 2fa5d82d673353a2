#include "platform/text/CanonicalSearch.h"

#include "platform/base/Utf8.h"
#include "platform/text/ByteSearch.h"
#include "platform/text/SequenceMatches.h"

namespace vornix::text {

CanonicalMatches::CanonicalMatches(std::string_view text, std::string_view pattern)
    : text_(text), pattern_(pattern) {
  if (isAscii(pattern) && isAscii(text)) return;
  sequences_ = std::make_unique<SequenceMatches>(text, pattern);
}

CanonicalMatches::~CanonicalMatches() = default;

std::optional<ByteRange> CanonicalMatches::next() {
  if (pattern_.empty()) return std::nullopt;
  if (sequences_ != nullptr) return sequences_->next();
  const std::size_t found = findBytes(text_.substr(searched_), pattern_);
  if (found == std::string_view::npos) {
    searched_ = text_.size();
    return std::nullopt;
  }
  const std::size_t offset = searched_ + found;
  searched_ = offset + pattern_.size();
  return ByteRange{offset, pattern_.size()};
}

bool containsCanonically(std::string_view text, std::string_view pattern) {
  return CanonicalMatches(text, pattern).next().has_value();
}

}  // namespace vornix::text
