#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "platform/base/Diagnostics.h"
#include "platform/text/CanonicalSearch.h"
#include "platform/text/CaseMapping.h"
#include "platform/text/CharacterProperties.h"
#include "platform/text/NSRegularExpression.h"
#include "tests/contract/support/ForkedProcess.h"

namespace vornix {
namespace {

using contract::ForkedProcess;

// In a process that may not open any file, and so loads no library.
template <typename Check>
int statusWithoutLibraries(Check check) {
  const ForkedProcess process([&check] {
    const rlimit none{0, 0};
    if (setrlimit(RLIMIT_NOFILE, &none) != 0) _exit(98);
    _exit(check());
  });
  return process.awaitEnd();
}

int countOfDiagnostics(void (*work)()) {
  static int count = 0;
  setDiagnosticReceiver([](std::string_view) { ++count; });
  work();
  return count;
}

TEST(MissingIcu, LeavesTextsBeyondAsciiAsTheyAre) {
  EXPECT_EQ(statusWithoutLibraries([] {
              setDiagnosticReceiver([](std::string_view) {});
              const auto folded = text::caseFolded(0xC9);
              const auto parts = text::canonicalDecomposition(0xE9);
              const bool asExpected =
                  text::lowercase("A\u00C9Z") == "a\u00C9z" && text::titlecase(U'a') == "A" &&
                  text::titlecase(0xE9) == "\u00E9" && folded.view() == U"\u00C9" &&
                  parts.view() == U"\u00E9" && text::combiningClass(0x301) == 0 &&
                  !text::isMark(0x301) && text::containsCanonically("caf\u00E9", "\u00E9") &&
                  !text::containsCanonically("caf\u00E9", "e\u0301");
              return asExpected ? 0 : 1;
            }),
            0);
}

TEST(MissingIcu, IsReportedOnce) {
  EXPECT_EQ(statusWithoutLibraries([] {
              return countOfDiagnostics([] {
                for (int time = 0; time < 3; ++time) static_cast<void>(text::lowercase("\u00C9"));
              });
            }),
            1);
}

TEST(MissingIcu, IsNotNoticedByAsciiTexts) {
  EXPECT_EQ(statusWithoutLibraries([] {
              return countOfDiagnostics([] {
                static_cast<void>(text::lowercase("ABC"));
                static_cast<void>(text::titlecase(U'a'));
                static_cast<void>(text::containsCanonically("abc", "b"));
              });
            }),
            0);
}

TEST(MissingIcu, LeavesEveryRegularExpressionUncompiled) {
  EXPECT_EQ(statusWithoutLibraries([] {
              setDiagnosticReceiver([](std::string_view) {});
              std::optional<NSError> error;
              const auto expression = NSRegularExpression::regularExpressionWithPattern(
                  "a", NSRegularExpressionOptions::none, &error);
              return expression == nullptr && error ? 0 : 1;
            }),
            0);
}

}  // namespace
}  // namespace vornix
