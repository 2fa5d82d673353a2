#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "platform/system/NSDateFormatter.h"

namespace vornix::fakes {

// Gregorian dates in UTC with ASCII digits, for the fields and lengths that the system uses.
class FakeDateFormatter final : public NSDateFormatter {
 public:
  // Null when the pattern has a letter that this one does not know.
  [[nodiscard]] static std::unique_ptr<FakeDateFormatter> create(std::string_view pattern);

  [[nodiscard]] std::string stringFromDate(Date date) override;

 private:
  explicit FakeDateFormatter(std::string_view pattern) : pattern_(pattern) {}

  std::string pattern_;
};

// While true, no date formatter can be made on the fake platform.
bool& dateFormattersAreMissing();
// What happens first when one is made there.
std::function<void()>& beforeDateFormatter();

}  // namespace vornix::fakes
