#include <gtest/gtest.h>

#include <cstdlib>
#include <new>
#include <string>

#include "foundation/NSString+NSStringAdditions.h"

namespace {

thread_local std::size_t allocations = 0;

}  // namespace

// Counts what this thread allocates.
void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
  ++allocations;
  return std::malloc(size != 0 ? size : 1);
}
void* operator new(std::size_t size) {
  if (void* memory = operator new(size, std::nothrow)) return memory;
  throw std::bad_alloc();
}
void operator delete(void* memory) noexcept {
  std::free(memory);
}
void operator delete(void* memory, std::size_t /*size*/) noexcept {
  std::free(memory);
}
void operator delete(void* memory, const std::nothrow_t& /*tag*/) noexcept {
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

}  // namespace
}  // namespace vornix
