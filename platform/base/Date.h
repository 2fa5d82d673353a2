#pragma once

#include <compare>

namespace vornix {

// A point in time: seconds since 2001-01-01 00:00:00 UTC, with the full precision of a double.
struct Date {
  static constexpr double kUnixEpochToReferenceDate = 978307200.0;

  double timeIntervalSinceReferenceDate = 0;

  [[nodiscard]] static constexpr Date fromUnixTime(double seconds) {
    return Date{seconds - kUnixEpochToReferenceDate};
  }
  [[nodiscard]] constexpr double unixTime() const {
    return timeIntervalSinceReferenceDate + kUnixEpochToReferenceDate;
  }
  [[nodiscard]] constexpr Date addingTimeInterval(double seconds) const {
    return Date{timeIntervalSinceReferenceDate + seconds};
  }
  // NOLINTNEXTLINE(modernize-use-nullptr): the comparison with 0 is the compiler's own.
  friend constexpr auto operator<=>(const Date&, const Date&) = default;
};

}  // namespace vornix
