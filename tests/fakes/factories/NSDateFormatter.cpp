#include "platform/system/NSDateFormatter.h"

#include "tests/fakes/FakeDateFormatter.h"

namespace vornix {

bool& fakes::dateFormattersAreMissing() {
  static bool missing = false;
  return missing;
}

std::function<void()>& fakes::beforeDateFormatter() {
  static auto& hook = *new std::function<void()>;
  return hook;
}

std::unique_ptr<NSDateFormatter> NSDateFormatter::formatterWithFormat(std::string_view pattern) {
  if (const auto hook = fakes::beforeDateFormatter()) hook();
  if (fakes::dateFormattersAreMissing()) return nullptr;
  return fakes::FakeDateFormatter::create(pattern);
}

}  // namespace vornix
