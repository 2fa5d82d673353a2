#include "platform/base/Format.h"

#include <gtest/gtest.h>

#include <array>

namespace vornix::text {
namespace {

TEST(Format, PrintsObjectsByTheirDescription) {
  EXPECT_EQ(format("%@-%@", "a", std::string("b")), "a-b");
  EXPECT_EQ(format("%@", nullptr), "(null)");
  EXPECT_EQ(format("%@", std::optional<std::string>()), "(null)");
  EXPECT_EQ(format("%@", Value(Null())), "<null>");
  EXPECT_EQ(format("%@ %@", Value(true), Value(-7)), "1 -7");
}

TEST(Format, PrintsRealsWithSixteenDigitsAtMost) {
  EXPECT_EQ(format("%@", Value(39.95)), "39.95");
  EXPECT_EQ(format("%@", Value(1.0)), "1");
  EXPECT_EQ(format("%@", Value(0.1 + 0.2)), "0.3");
  EXPECT_EQ(format("%@", Value(1e21)), "1e+21");
}

TEST(Format, CutsNumbersToTheSizeThatTheConversionNames) {
  EXPECT_EQ(format("%d", std::int64_t{0x100000001}), "1");
  EXPECT_EQ(format("%ld", std::int64_t{0x100000001}), "4294967297");
  EXPECT_EQ(format("%02x%02x", std::uint8_t{10}, std::uint8_t{255}), "0aff");
  EXPECT_EQ(format("%hhd", 255), "-1");
}

TEST(Format, HonoursFlagsWidthAndPrecision) {
  EXPECT_EQ(format("%5d|%-5d|%05d|%+d", 42, 42, 42, 42), "   42|42   |00042|+42");
  EXPECT_EQ(format("%.2f|%8.3f", 3.14159, 2.5), "3.14|   2.500");
  EXPECT_EQ(format("%*d", 4, 7), "   7");
  EXPECT_EQ(format("%.2s", "abc"), "ab");
}

TEST(Format, PrintsPointersInHexAndNullAsZero) {
  EXPECT_EQ(format("%p", static_cast<const void*>(nullptr)), "0x0");
  EXPECT_EQ(format("%p", reinterpret_cast<const void*>(std::uintptr_t{0xABC})), "0xabc");
}

TEST(Format, SurvivesWrongAndMissingArguments) {
  EXPECT_EQ(format("%d", "text"), "text");
  EXPECT_EQ(format("%s", 5), "5");
  EXPECT_EQ(format("%f", "x"), "x");
  EXPECT_EQ(format("%@ %@", "only"), "only (null)");
  EXPECT_EQ(format("%s", static_cast<const char*>(nullptr)), "(null)");
}

TEST(Format, SurvivesAnyConversionWithAnArgumentOfAnyType) {
  const Value list(Array{1, "a"});
  const NSError error{.domain = "D", .code = 5};
  const NSString object("object");
  const std::array<FormatArgument, 13> arguments{nullptr,
                                                 true,
                                                 -1,
                                                 std::uint64_t{UINT64_MAX},
                                                 0.5,
                                                 "text",
                                                 std::string_view("view"),
                                                 static_cast<const char*>(nullptr),
                                                 static_cast<const void*>(nullptr),
                                                 list,
                                                 error,
                                                 &object,
                                                 static_cast<const NSObject*>(nullptr)};
  for (int letter = 1; letter < 128; ++letter) {
    for (const auto* front :
         {"%", "%ll", "%-+ #05.3", "%*.*", "%99999999999.99999999999h", "%1$"}) {
      for (const auto& argument : arguments) {
        const std::array<FormatArgument, 3> three{argument, argument, argument};
        const auto text =
            formatWithArguments(std::string(front) + static_cast<char>(letter), three);
        EXPECT_LT(text.size(), 10000U) << front << static_cast<char>(letter);
      }
    }
  }
}

TEST(Format, PrintsUnknownLettersAndDropsALonePercentSign) {
  EXPECT_EQ(format("100%% %y end%", 1), "100% y end");
}

TEST(Format, PicksArgumentsByPosition) {
  EXPECT_EQ(format("%2$@ %1$@", "a", "b"), "b a");
}

TEST(Format, PrintsErrorsWithDomainAndCode) {
  const NSError error{.domain = "D", .code = 5, .localizedDescription = "why"};
  EXPECT_EQ(format("%@", error), "Error Domain=D Code=5 \"why\"");
}

TEST(Format, DescribesAnErrorThatTellsNoReasonByDomainAndCode) {
  EXPECT_EQ(NSError({.domain = "D", .code = 5}).description(),
            "Error Domain=D Code=5 \"The operation couldn't be completed. (D error 5.)\"");
}

TEST(Format, NamesAFailureOfTheSystemByItsNumberAndWhatFailed) {
  const auto error = posixError(2, "open");
  EXPECT_EQ(error.domain, NSPOSIXErrorDomain);
  EXPECT_EQ(error.code, 2);
  EXPECT_EQ(error.underlyingErrno, 2);
  EXPECT_EQ(error.localizedDescription, "open: No such file or directory");
}

TEST(Format, PrintsContainersOverSeveralLines) {
  const Value arguments(Array{"-b", "com.orvane.Vornix3", "abc"});
  EXPECT_EQ(format("%@", arguments), "(\n    \"-b\",\n    \"com.orvane.Vornix3\",\n    abc\n)");
  EXPECT_EQ(format("%@", Value(Array{})), "(\n)");
  EXPECT_EQ(format("%@", Value(Dictionary{{"k", 1}, {"a b", "\xC3\xA9"}})),
            "{\n    \"a b\" = \"\\U00e9\";\n    k = 1;\n}");
}

TEST(Format, PrintsDatesInUtcWithSecondsCutOff) {
  EXPECT_EQ(format("%@", Value(Date::fromUnixTime(0.9))), "1970-01-01 00:00:00 +0000");
  EXPECT_EQ(format("%@", Value(Date::fromUnixTime(-0.5))), "1969-12-31 23:59:59 +0000");
}

TEST(Format, PrintsDataInGroupsOfFourBytes) {
  Data bytes;
  for (const char c : std::string("abcdef")) bytes.push_back(static_cast<std::byte>(c));
  EXPECT_EQ(format("%@", Value(bytes)), "<61626364 6566>");
}

}  // namespace
}  // namespace vornix::text
