#include <gtest/gtest.h>

#include <cstdlib>
#include <new>
#include <string>

#include "foundation/NSString+NSStringAdditions.h"
#include "foundation/ResourceNameComparison.h"
#include "platform/text/CanonicalSearch.h"
#include "tests/support/Repeated.h"

namespace {

thread_local std::size_t allocations = 0;
thread_local std::size_t allocatedBytes = 0;

}  // namespace

// Counts what this thread allocates. A compiler that sees into one of a pair takes it for a
// mismatch.
[[gnu::noinline]] void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
  ++allocations;
  allocatedBytes += size;
  return std::malloc(size != 0 ? size : 1);
}
[[gnu::noinline]] void* operator new(std::size_t size) {
  if (void* memory = operator new(size, std::nothrow)) return memory;
  throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void* memory) noexcept {
  std::free(memory);
}
[[gnu::noinline]] void operator delete(void* memory, std::size_t /*size*/) noexcept {
  std::free(memory);
}
[[gnu::noinline]] void operator delete(void* memory, const std::nothrow_t& /*tag*/) noexcept {
  std::free(memory);
}

namespace vornix {
namespace {

template <typename Work>
std::size_t allocationsDuring(Work work) {
  const std::size_t before = allocations;
  work();
  return allocations - before;
}

template <typename Work>
std::size_t bytesDuring(Work work) {
  const std::size_t before = allocatedBytes;
  work();
  return allocatedBytes - before;
}

std::string longestUsualPath() {
  std::string path = "/";
  while (path.size() + 5 <= 4096) path += "name/";
  return path.append(4096 - path.size(), 'x');
}

TEST(NSStringAllocation, IsSeenByTheseTests) {
  const std::string text(100, 'x');
  EXPECT_EQ(allocationsDuring([&] { EXPECT_EQ(std::string(text).size(), text.size()); }), 1U);
}

TEST(NSStringAllocation, IsNotNeededToTellSubpathsInAscii) {
  const std::string path = longestUsualPath();
  const std::string folder = path.substr(0, 4094);
  const std::string below = folder + "/x";
  const std::string beside = folder + "xy";
  EXPECT_EQ(allocationsDuring([&] {
              EXPECT_TRUE(isSubpathOf(path, path));
              EXPECT_TRUE(isSubpathOf(below, folder));
              EXPECT_FALSE(isSubpathOf(beside, folder));
              EXPECT_TRUE(isSubpathOf(path, "/"));
              EXPECT_FALSE(isSubpathOf("/a", path));
            }),
            0U);
}

TEST(NSStringAllocation, IsNotNeededToCompareNamesInAscii) {
  const std::string name = "Disk Utility And A Name That Is No Short One";
  const std::string turned = "one that is no short a name and utility disk";
  const std::string copy = name + " 2";
  EXPECT_EQ(allocationsDuring([&] {
              EXPECT_EQ(compareApplicationResourceNameByWords(name, turned, " "), 0);
              EXPECT_EQ(compareApplicationResourceNameByWords(name, copy, " "), -1);
              EXPECT_EQ(compareApplicationResourceNameByWords(copy, name, " "), -1);
              EXPECT_EQ(compareApplicationResourceNameByWords("a-b", "B-A", "-"), 0);
            }),
            0U);
}

constexpr std::size_t kLittle = 1U << 16U;

// What is known of a character is loaded with the first one.
void loadCharacters() {
  EXPECT_TRUE(isSubpathOf("/\u00E9/a", "/e\u0301"));
  EXPECT_TRUE(holdsNumberedCopyGenerally("\u00C9 1", "\u00E9"));
}

TEST(NSStringAllocation, IsNotWastedOnANameThatCannotFit) {
  loadCharacters();
  for (const std::string_view piece : {"x", "\u00E9", "\u00DF", "\U00010428"}) {
    const std::string name = tests::repeated(piece, 500'000);
    for (const std::string_view other : {"x 1", "\u00E9 1", "\u0390\u0390 1", ""}) {
      EXPECT_LT(bytesDuring([&] { EXPECT_FALSE(holdsNumberedCopyGenerally(other, name)); }),
                kLittle)
          << piece << " in " << other;
    }
  }
}

TEST(NSStringAllocation, IsNotWastedOnAPatternThatCannotFit) {
  loadCharacters();
  const std::string text = "\u00E9\u1F82 a b";
  for (const std::string_view piece : {"x", "\u00E9", "\uD55C", "e\u0301", "\u0301", "\u1F82"}) {
    const std::string pattern = "e" + tests::repeated(piece, 500'000);
    EXPECT_LT(bytesDuring([&] { EXPECT_FALSE(text::containsCanonically(text, pattern)); }), kLittle)
        << piece;
  }
}

// Four bytes for each of the pattern's symbols and as many for what a mismatch leaves of it; a list
// that grows takes up to three times its size on the way.
TEST(NSStringAllocation, IsSmallForALongName) {
  loadCharacters();
  constexpr std::size_t length = 500'000;
  const std::string name = tests::repeated("\u00E9", length);
  const std::string other = name + " 1";
  EXPECT_LT(bytesDuring([&] { EXPECT_TRUE(holdsNumberedCopyGenerally(other, name)); }),
            length * (4 + 4 + 1) * 3);
}

}  // namespace
}  // namespace vornix
