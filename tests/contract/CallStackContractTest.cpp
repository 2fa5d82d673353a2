#include "platform/system/CallStack.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <search.h>

#include <cstdlib>
#include <ostream>
#include <streambuf>
#include <thread>

#include "tests/fakes/FakeCallStack.h"

namespace vornix {
namespace {

using testing::Contains;
using testing::ContainsRegex;
using testing::MatchesRegex;
using testing::Not;

class FakeStack {
 public:
  static std::vector<std::string> symbols() { return fakes::fakeCallStackSymbols(); }
};

class RealStack {
 public:
  static std::vector<std::string> symbols() { return callStackSymbols(); }
};

template <typename Stack>
class CallStackContract : public testing::Test {};

using Stacks = testing::Types<FakeStack, RealStack>;
TYPED_TEST_SUITE(CallStackContract, Stacks);

TYPED_TEST(CallStackContract, NumbersItsLinesFromNought) {
  const auto symbols = TypeParam::symbols();
  ASSERT_FALSE(symbols.empty());
  for (std::size_t index = 0; index < symbols.size(); ++index) {
    EXPECT_EQ(std::stoul(symbols[index]), index);
  }
}

TYPED_TEST(CallStackContract, EachLineNamesTheImageTheAddressAndTheSymbolWithAnOffset) {
  for (const auto& line : TypeParam::symbols()) {
    EXPECT_THAT(line, MatchesRegex("[0-9]+ +[^ /]+ +0x[0-9a-f]{16} .+ \\+ [0-9]+"));
  }
}

// A call by way of the C library, whose functions have names. The sanitizers put themselves before
// the better known ones.
std::vector<std::string> searchStack;
int compare(const void* /*left*/, const void* /*right*/) {
  if (searchStack.empty()) searchStack = callStackSymbols();
  return 0;
}

TEST(LinuxCallStack, NamesTheFunctionsOfALibraryFromTheInnermostOn) {
  const std::array<int, 2> numbers{2, 1};
  std::size_t count = numbers.size();
  ASSERT_NE(lfind(&numbers[1], numbers.data(), &count, sizeof(int), compare), nullptr);
  ASSERT_GE(searchStack.size(), 3U);
  EXPECT_THAT(searchStack[0], Not(ContainsRegex("callStackSymbols")));
  EXPECT_THAT(searchStack[0], Not(ContainsRegex("libc\\.so")));
  EXPECT_THAT(searchStack[1], ContainsRegex("^1 +libc\\.so"));
  EXPECT_THAT(searchStack, Contains(ContainsRegex("libc\\.so.* lfind[^ ]* \\+ ")));
}

class WatchedBuffer final : public std::streambuf {
 public:
  int sync() override {
    stack = callStackSymbols();
    return 0;
  }
  std::vector<std::string> stack;
};

TEST(LinuxCallStack, WritesTheNamesOfCppFunctionsAsTheyStandInTheSource) {
  WatchedBuffer buffer;
  std::ostream stream(&buffer);
  stream.flush();
  ASSERT_GE(buffer.stack.size(), 2U);
  EXPECT_THAT(buffer.stack[1], ContainsRegex("libstdc\\+\\+.* std::ostream::flush\\(\\) \\+ "));
}

TEST(LinuxCallStack, EndsAtTheStartOfTheThread) {
  std::vector<std::string> symbols;
  std::thread([&] { symbols = callStackSymbols(); }).join();
  EXPECT_GE(symbols.size(), 2U);
  EXPECT_LT(symbols.size(), 60U);
}

// NOLINTNEXTLINE(misc-no-recursion): the depth is what is tried.
std::size_t depthOf(int calls) {
  volatile int rest = calls;
  if (rest == 0) return callStackSymbols().size();
  const std::size_t depth = depthOf(rest - 1);
  return rest >= 0 ? depth : 0;
}

TEST(LinuxCallStack, IsCutShortWhereItIsVeryDeep) {
  const std::size_t depth = depthOf(10000);
  EXPECT_GE(depth, 100U);
  EXPECT_LE(depth, 1000U);
}

}  // namespace
}  // namespace vornix
