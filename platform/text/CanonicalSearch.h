#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string_view>

namespace vornix::text {

// A part of a text, in bytes.
struct ByteRange {
  std::size_t offset = 0;
  std::size_t length = 0;

  friend bool operator==(const ByteRange&, const ByteRange&) = default;
};

class SequenceMatches;

// Where a pattern stands in a text, from the left and without overlaps. Canonically equivalent
// texts count as equal, and no match begins or ends within a composed sequence: "e" is not found in
// "e\u0301", nor is "&" in "&\u0301". An empty pattern is found nowhere, nor is an ill-formed byte.
// Linear in the lengths of both; nothing is allocated and no library loaded where both are ASCII.
class CanonicalMatches {
 public:
  // Both texts must outlive it.
  CanonicalMatches(std::string_view text, std::string_view pattern);
  CanonicalMatches(const CanonicalMatches&) = delete;
  CanonicalMatches& operator=(const CanonicalMatches&) = delete;
  ~CanonicalMatches();

  // The next match; none when there is no further one.
  [[nodiscard]] std::optional<ByteRange> next();

 private:
  std::string_view text_;
  std::string_view pattern_;
  // How far `text_` has been searched, where both are ASCII.
  std::size_t searched_ = 0;
  // Null where both are ASCII, or nothing can be found.
  std::unique_ptr<SequenceMatches> sequences_;
};

[[nodiscard]] bool containsCanonically(std::string_view text, std::string_view pattern);

}  // namespace vornix::text
