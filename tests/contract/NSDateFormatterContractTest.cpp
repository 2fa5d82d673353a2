#include "platform/system/NSDateFormatter.h"

#include <gtest/gtest.h>
#include <unicode/uvernum.h>

#include <cmath>
#include <cstdlib>
#include <ctime>
#include <limits>
#include <vector>

#include "platform/linux/system/LocaleDates.h"
#include "platform/linux/system/SharedLibrary.h"
#include "tests/fakes/FakeDateFormatter.h"

namespace vornix {
namespace {

constexpr const char* kLogPattern = "yyyy-MM-dd HH:mm:ss.SSS";
const Date kReferenceNight = Date::fromUnixTime(1478307245.679);

using Factory = std::unique_ptr<NSDateFormatter> (*)(std::string_view);

std::unique_ptr<NSDateFormatter> fakeFormatter(std::string_view pattern) {
  return fakes::FakeDateFormatter::create(pattern);
}

void setLocale(const char* locale) {
  setenv("LC_ALL", locale, 1);
}

void setZone(const char* zone) {
  setenv("TZ", zone, 1);
}

std::string formatted(std::string_view pattern, Date date) {
  return NSDateFormatter::formatterWithFormat(pattern)->stringFromDate(date);
}

class NSDateFormatterContract : public testing::TestWithParam<Factory> {
 protected:
  void SetUp() override {
    setZone("UTC");
    setLocale("C");
  }
  [[nodiscard]] static std::string format(std::string_view pattern, Date date) {
    return GetParam()(pattern)->stringFromDate(date);
  }
};

INSTANTIATE_TEST_SUITE_P(Fake, NSDateFormatterContract, testing::Values(&fakeFormatter));
INSTANTIATE_TEST_SUITE_P(Linux, NSDateFormatterContract,
                         testing::Values(&NSDateFormatter::formatterWithFormat));

TEST_P(NSDateFormatterContract, PrintsTheTwoPatternsOfTheSystem) {
  EXPECT_EQ(format(kLogPattern, kReferenceNight), "2016-11-05 00:54:05.679");
  EXPECT_EQ(format("HH:mm", kReferenceNight), "00:54");
}

TEST_P(NSDateFormatterContract, RoundsMillisecondsToTheNearestWithHalvesUp) {
  EXPECT_EQ(format(kLogPattern, Date::fromUnixTime(0.0004)), "1970-01-01 00:00:00.000");
  // Powers of two, so that the half is exact.
  EXPECT_EQ(format(kLogPattern, Date::fromUnixTime(0.0625)), "1970-01-01 00:00:00.063");
  EXPECT_EQ(format(kLogPattern, Date::fromUnixTime(0.1875)), "1970-01-01 00:00:00.188");
}

TEST_P(NSDateFormatterContract, CarriesARoundedMillisecondIntoEveryField) {
  EXPECT_EQ(format(kLogPattern, Date::fromUnixTime(1.9996)), "1970-01-01 00:00:02.000");
  EXPECT_EQ(format(kLogPattern, Date::fromUnixTime(1483228799.9997)), "2017-01-01 00:00:00.000");
  EXPECT_EQ(format("HH:mm", Date::fromUnixTime(59.9997)), "00:01");
}

TEST_P(NSDateFormatterContract, PrintsDatesBeforeTheEpoch) {
  EXPECT_EQ(format(kLogPattern, Date::fromUnixTime(-0.25)), "1969-12-31 23:59:59.750");
  EXPECT_EQ(format(kLogPattern, Date::fromUnixTime(-1.0)), "1969-12-31 23:59:59.000");
}

TEST_P(NSDateFormatterContract, RefusesAPatternWithAnUnknownField) {
  EXPECT_EQ(GetParam()("QQQ"), nullptr);
  EXPECT_EQ(GetParam()("yyyy-MM-dd zzz"), nullptr);
}

class LinuxDateFormatter : public testing::Test {
 protected:
  void SetUp() override {
    setZone("UTC");
    tzset();
    for (const char* name : {"LC_ALL", "LC_TIME", "LANG"}) unsetenv(name);
  }
};

TEST_F(LinuxDateFormatter, PrintsFieldsAtTheLengthOfThePattern) {
  const auto date = Date::fromUnixTime(1478307245.679);
  EXPECT_EQ(formatted("y yy yyyyy", date), "2016 16 02016");
  EXPECT_EQ(formatted("M d H m s", date), "11 5 0 54 5");
  EXPECT_EQ(formatted("S SS SSSS", date), "6 67 6790");
  EXPECT_EQ(formatted("HH'h' mm 'o''clock' ''", date), "00h 54 o'clock '");
  EXPECT_EQ(formatted("", date), "");
  EXPECT_EQ(NSDateFormatter::formatterWithFormat("'open"), nullptr);
}

TEST_F(LinuxDateFormatter, KeepsTheZoneThatItWasMadeIn) {
  setZone("EST5EDT,M3.2.0,M11.1.0");
  const auto formatter = NSDateFormatter::formatterWithFormat(kLogPattern);
  setZone("UTC");
  EXPECT_EQ(formatter->stringFromDate(kReferenceNight), "2016-11-04 20:54:05.679");
  EXPECT_EQ(formatter->stringFromDate(kReferenceNight.addingTimeInterval(7 * 86400)),
            "2016-11-11 19:54:05.679");
}

TEST_F(LinuxDateFormatter, ReadsTheZoneAnewForEachFormatter) {
  setZone("UTC");
  EXPECT_EQ(formatted("HH:mm", kReferenceNight), "00:54");
  setZone("Asia/Kolkata");
  EXPECT_EQ(formatted("HH:mm", kReferenceNight), "06:24");
}

TEST_F(LinuxDateFormatter, SurvivesDatesThatAreNone) {
  for (const double seconds : {1e300, -1e300, std::numeric_limits<double>::infinity(),
                               -std::numeric_limits<double>::infinity(), std::nan("")}) {
    EXPECT_FALSE(formatted(kLogPattern, Date{seconds}).empty()) << seconds;
  }
}

struct LocaleCase {
  const char* locale;
  const char* expected;
};

TEST_F(LinuxDateFormatter, PrintsDigitsAndCalendarOfTheLocale) {
  const std::vector<LocaleCase> table{
      {"en_US.UTF-8", "2016-11-05 00:54:05.679"},
      {"de_DE.UTF-8", "2016-11-05 00:54:05.679"},
      {"hi_IN", "2016-11-05 00:54:05.679"},
      {"ur_PK", "2016-11-05 00:54:05.679"},
      {"ar_AE.UTF-8", "2016-11-05 00:54:05.679"},
      {"C", "2016-11-05 00:54:05.679"},
      {"POSIX", "2016-11-05 00:54:05.679"},
      {"no such locale", "2016-11-05 00:54:05.679"},
      {"th_TH.UTF-8", "2559-11-05 00:54:05.679"},
      {"en_TH", "2559-11-05 00:54:05.679"},
      {"ar_EG.UTF-8", "٢٠١٦-١١-٠٥ ٠٠:٥٤:٠٥.٦٧٩"},
      {"ckb_IQ", "٢٠١٦-١١-٠٥ ٠٠:٥٤:٠٥.٦٧٩"},
      {"fa_IR.UTF-8", "۱۳۹۵-۰۸-۱۵ ۰۰:۵۴:۰۵.۶۷۹"},
      {"mr_IN", "२०१६-११-०५ ००:५४:०५.६७९"},
      {"ne_NP", "२०१६-११-०५ ००:५४:०५.६७९"},
      {"my_MM", "၂၀၁၆-၁၁-၀၅ ၀၀:၅၄:၀၅.၆၇၉"},
      {"bn_BD", "২০১৬-১১-০৫ ০০:৫৪:০৫.৬৭৯"},
      {"pa_PK", "۲۰۱۶-۱۱-۰۵ ۰۰:۵۴:۰۵.۶۷۹"},
      {"pa_IN", "2016-11-05 00:54:05.679"},
      {"ja_JP@calendar=japanese", "0028-11-05 00:54:05.679"},
      {"he_IL@calendar=hebrew", "5777-02-04 00:54:05.679"},
  };
  for (const auto& [locale, expected] : table) {
    setLocale(locale);
    EXPECT_EQ(formatted(kLogPattern, kReferenceNight), expected) << locale;
  }
}

TEST_F(LinuxDateFormatter, TakesTheLocaleFromTheFirstOfThreeVariables) {
  setenv("LANG", "th_TH", 1);
  EXPECT_EQ(formatted("yyyy", kReferenceNight), "2559");
  setenv("LC_TIME", "de_DE", 1);
  EXPECT_EQ(formatted("yyyy", kReferenceNight), "2016");
  setenv("LC_ALL", "fa_IR", 1);
  EXPECT_EQ(formatted("yyyy", kReferenceNight), "۱۳۹۵");
  setenv("LC_ALL", "", 1);
  EXPECT_EQ(formatted("yyyy", kReferenceNight), "2016");
}

TEST_F(LinuxDateFormatter, TellsTheSameTimeInEveryCalendar) {
  setZone("EST5EDT,M3.2.0,M11.1.0");
  setLocale("th_TH");
  EXPECT_EQ(formatted(kLogPattern, kReferenceNight), "2559-11-04 20:54:05.679");
  EXPECT_EQ(formatted(kLogPattern, Date::fromUnixTime(1478307245.9996)), "2559-11-04 20:54:06.000");
}

TEST_F(LinuxDateFormatter, LeavesIcuAloneExactlyWhereItWouldPrintTheSame) {
  std::string why;
  const auto icu = SharedLibrary::open("libicuuc.so." U_ICU_VERSION_SHORT, &why);
  ASSERT_TRUE(icu) << why;
  const auto count = icu->load<std::int32_t()>("uloc_countAvailable_" U_ICU_VERSION_SHORT);
  const auto name = icu->load<const char*(std::int32_t)>("uloc_getAvailable_" U_ICU_VERSION_SHORT);
  ASSERT_TRUE(count != nullptr && name != nullptr);
  ASSERT_GT(count(), 100);
  for (std::int32_t index = 0; index < count(); ++index) {
    const std::string locale = name(index);
    // Scripts are no part of a locale's name in the environment.
    if (parseLocaleName(locale).isPlain()) continue;
    const auto formatter = icuDateFormatter(kLogPattern, locale, &why);
    ASSERT_NE(formatter, nullptr) << locale << ": " << why;
    EXPECT_EQ(dateFormatterForLocale(kLogPattern, locale)->stringFromDate(kReferenceNight),
              formatter->stringFromDate(kReferenceNight))
        << locale;
  }
}

}  // namespace
}  // namespace vornix
