#include <unicode/udat.h>

#include <ctime>
#include <utility>

#include "platform/base/Utf16.h"
#include "platform/base/Utf8.h"
#include "platform/linux/system/DatePattern.h"
#include "platform/linux/system/IcuName.h"
#include "platform/linux/system/LocaleDates.h"
#include "platform/linux/system/SharedLibrary.h"

namespace vornix {
namespace {

struct Icu {
  decltype(&udat_open) open = nullptr;
  decltype(&udat_format) format = nullptr;
  decltype(&udat_close) close = nullptr;

  static std::optional<Icu> load(std::string* why) {
    const auto library = SharedLibrary::open("libicui18n.so." U_ICU_VERSION_SHORT, why);
    Icu icu;
    if (library && library->bind(icu.open, VORNIX_ICU_NAME(udat_open), why) &&
        library->bind(icu.format, VORNIX_ICU_NAME(udat_format), why) &&
        library->bind(icu.close, VORNIX_ICU_NAME(udat_close), why)) {
      return icu;
    }
    return std::nullopt;
  }
};

class IcuDateFormatter final : public NSDateFormatter {
 public:
  IcuDateFormatter(Icu icu, UDateFormat* format) : icu_(icu), format_(format) {}
  IcuDateFormatter(const IcuDateFormatter&) = delete;
  IcuDateFormatter& operator=(const IcuDateFormatter&) = delete;
  ~IcuDateFormatter() override { icu_.close(format_); }

  [[nodiscard]] std::string stringFromDate(Date date) override {
    const auto time = roundToMilliseconds(date);
    const double shifted = static_cast<double>(time.seconds + secondsEastOfGreenwich(time.seconds));
    const UDate milliseconds = shifted * 1000.0 + time.milliseconds;
    std::u16string units(128, u'\0');
    for (;;) {
      UErrorCode error = U_ZERO_ERROR;
      const auto length = icu_.format(format_, milliseconds, units.data(),
                                      static_cast<std::int32_t>(units.size()), nullptr, &error);
      const bool tooLong = error == U_BUFFER_OVERFLOW_ERROR;
      if (U_FAILURE(error) && !tooLong) return {};
      units.resize(static_cast<std::size_t>(length));
      if (!tooLong) return text::textOfUnits(units);
    }
  }

 private:
  // The C library's zone, so that both kinds of formatter tell the same time.
  static std::int64_t secondsEastOfGreenwich(std::int64_t seconds) {
    const std::time_t time = seconds;
    std::tm local{};
    return localtime_r(&time, &local) != nullptr ? local.tm_gmtoff : 0;
  }

  Icu icu_;
  UDateFormat* format_;
};

}  // namespace

std::unique_ptr<NSDateFormatter> icuDateFormatter(std::string_view pattern,
                                                  const std::string& icuLocale, std::string* why) {
  const auto icu = Icu::load(why);
  if (!icu) return nullptr;
  const auto units = text::utf16Units(pattern);
  UErrorCode error = U_ZERO_ERROR;
  auto* format = icu->open(UDAT_PATTERN, UDAT_PATTERN, icuLocale.c_str(), u"Etc/UTC", -1,
                           units.data(), static_cast<std::int32_t>(units.size()), &error);
  if (U_FAILURE(error) || format == nullptr) {
    if (why != nullptr) *why = "ICU error " + std::to_string(static_cast<int>(error));
    return nullptr;
  }
  return std::make_unique<IcuDateFormatter>(*icu, format);
}

}  // namespace vornix
