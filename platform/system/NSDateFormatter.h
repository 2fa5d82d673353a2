#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/base/Date.h"

namespace vornix {

// Prints dates by a pattern ("HH:mm", "yyyy-MM-dd HH:mm:ss.SSS") in the user's locale, calendar and
// time zone as they were when the formatter was made. One thread at a time.
class NSDateFormatter {
 public:
  virtual ~NSDateFormatter() = default;

  [[nodiscard]] virtual std::string stringFromDate(Date date) = 0;

  // Null when the pattern cannot be used.
  [[nodiscard]] static std::unique_ptr<NSDateFormatter> formatterWithFormat(
      std::string_view pattern);
};

}  // namespace vornix
