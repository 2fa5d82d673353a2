#pragma once

#include <cstddef>
#include <vector>

#include "platform/text/CompactLengths.h"

namespace vornix::text {

// Finds a pattern in a stream of symbols that is read once: after every symbol it tells how much of
// the pattern, from its start, the latest symbols are. Linear in all, whatever the symbols.
template <typename Symbol>
class PatternAutomaton {
 public:
  void append(Symbol symbol) {
    if (pattern_.empty()) {
      fallbacks_.append(0);
    } else {
      fallbacks_.append(advanced(fallbacks_[fallbacks_.size() - 1], symbol));
    }
    pattern_.push_back(symbol);
  }

  [[nodiscard]] std::size_t size() const { return pattern_.size(); }
  [[nodiscard]] bool empty() const { return pattern_.empty(); }

  // How much is matched with `symbol` after `matched`; `size()` is a match. The pattern must not be
  // empty.
  [[nodiscard]] std::size_t advanced(std::size_t matched, Symbol symbol) const {
    while (matched == pattern_.size() || pattern_[matched] != symbol) {
      if (matched == 0) return 0;
      matched = fallbacks_[matched - 1];
    }
    return matched + 1;
  }

 private:
  std::vector<Symbol> pattern_{};
  // What a mismatch leaves of each start of the pattern.
  CompactLengths<> fallbacks_{};
};

}  // namespace vornix::text
