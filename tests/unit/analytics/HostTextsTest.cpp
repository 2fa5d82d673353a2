#include "analytics/HostTexts.h"

#include <gtest/gtest.h>

#include <cmath>

namespace vornix {
namespace {

SizeProvider fixed(std::optional<Size> size) {
  return [size] { return size; };
}

TEST(HostTexts, NamesVersionAndSystemInTheUserAgent) {
  EXPECT_EQ(userAgentText("3.4-1A", {10, 11, 6}),
            "Vornix/3.4-1A (Macintosh; Intel Mac OS X 10_11_6)");
}

TEST(HostTexts, WritesScreenWindowAndLanguage) {
  EXPECT_EQ(systemInfoText(fixed(Size{1440, 900}), fixed(Size{800, 600}), {"de-DE", "fr"}),
            "&sr=1440x900&vp=800x600&ul=de-DE");
}

TEST(HostTexts, WritesZerosWithoutScreenOrMainWindowAndThenTheLanguage) {
  EXPECT_EQ(systemInfoText(fixed(Size{1440, 900}), fixed(std::nullopt), {"en"}),
            "&sr=1440x900&vp=0x0&ul=en");
  EXPECT_EQ(systemInfoText(fixed(std::nullopt), fixed(std::nullopt), {"en"}),
            "&sr=0x0&vp=0x0&ul=en");
}

TEST(HostTexts, CutsFractionsTowardZeroAndSurvivesSizesThatAreNoIntegers) {
  EXPECT_EQ(systemInfoText(fixed(Size{1439.9, -0.9}), fixed(Size{std::nan(""), 0}), {"en"}),
            "&sr=1439x0&vp=0x0&ul=en");
}

TEST(HostTexts, WritesEnglishForAnEmptyListOfLanguages) {
  EXPECT_EQ(systemInfoText(fixed(std::nullopt), fixed(std::nullopt), {}), "&sr=0x0&vp=0x0&ul=en");
}

TEST(HostTexts, AsksForTheSizesAfreshForEachNumber) {
  double next = 1;
  const SizeProvider growing = [&next] {
    ++next;
    return Size{next, next};
  };
  EXPECT_EQ(systemInfoText(growing, growing, {"en"}), "&sr=2x3&vp=4x5&ul=en");
}

TEST(HostTexts, TellsABetaByTheLetterInItsVersion) {
  EXPECT_TRUE(isBetaVersion("3.4b2"));
  EXPECT_TRUE(isBetaVersion("3.4 Beta"));
  EXPECT_FALSE(isBetaVersion("3.4.0"));
  EXPECT_FALSE(isBetaVersion(""));
}

}  // namespace
}  // namespace vornix
