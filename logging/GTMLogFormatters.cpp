#include "logging/GTMLogFormatters.h"

#include <typeinfo>
#include <utility>

#include "platform/base/Text.h"

namespace vornix {
namespace {

constexpr std::string_view kTimePattern = "yyyy-MM-dd HH:mm:ss.SSS";

// An address that no other living thread has.
const void* threadIdentity() {
  static thread_local const char identity = 0;
  return &identity;
}

// A subclass may do more than the class that it stems from.
template <typename Formatter>
bool isExactly(const Formatter& formatter) {
  return typeid(formatter) == typeid(Formatter);
}

}  // namespace

bool GTMLogBasicFormatter::onlyBuildsText() const {
  return isExactly(*this);
}

bool GTMLogStandardFormatter::onlyBuildsText() const {
  return isExactly(*this);
}

bool GTMLogASLFormatter::onlyBuildsText() const {
  return isExactly(*this);
}

std::optional<std::string> GTMLogBasicFormatter::stringForFunc(
    std::optional<std::string_view> /*function*/, std::optional<std::string_view> format,
    const text::FormatArguments* arguments, LogLevel /*level*/) {
  if (!format || arguments == nullptr) return std::nullopt;
  return text::formatWithArguments(*format, *arguments);
}

std::string GTMLogBasicFormatter::prettyNameForFunc(std::optional<std::string_view> function) {
  const auto name = text::trim(function.value_or(""));
  if (name.empty()) return "(unknown)";
  const bool complete = name.starts_with("-[") || name.starts_with("+[") || name.ends_with(')');
  return std::string(name) + (complete ? "" : "()");
}

std::shared_ptr<GTMLogStandardFormatter> GTMLogStandardFormatter::create(
    std::unique_ptr<NSDateFormatter> dateFormatter, const NSProcessInfo& processInfo,
    const SystemClock& clock) {
  auto pname = processInfo.processName();
  if (dateFormatter == nullptr || pname.empty()) return nullptr;
  return std::shared_ptr<GTMLogStandardFormatter>(new GTMLogStandardFormatter(
      std::move(dateFormatter), std::move(pname), processInfo.processIdentifier(), clock));
}

std::shared_ptr<GTMLogStandardFormatter> GTMLogStandardFormatter::create() {
  return create(NSDateFormatter::formatterWithFormat(kTimePattern), NSProcessInfo::processInfo(),
                sharedSystemClock());
}

GTMLogStandardFormatter::GTMLogStandardFormatter(std::unique_ptr<NSDateFormatter> dateFormatter,
                                                 std::string pname, std::int32_t pid,
                                                 const SystemClock& clock)
    : dateFormatter_(std::move(dateFormatter)),
      pname_(std::move(pname)),
      pid_(pid),
      clock_(clock) {}

std::string GTMLogStandardFormatter::currentTime() {
  const Lock lock(dateFormatterMutex_);
  return dateFormatter_->stringFromDate(clock_.now());
}

std::optional<std::string> GTMLogStandardFormatter::stringForFunc(
    std::optional<std::string_view> function, std::optional<std::string_view> format,
    const text::FormatArguments* arguments, LogLevel level) {
  const auto message = GTMLogBasicFormatter::stringForFunc(function, format, arguments, level);
  return text::format("%@ %@[%d/%p] [lvl=%d] %@ %@", currentTime(), pname_, pid_, threadIdentity(),
                      level, prettyNameForFunc(function), message);
}

std::optional<std::string> GTMLogASLFormatter::stringForFunc(
    std::optional<std::string_view> function, std::optional<std::string_view> format,
    const text::FormatArguments* arguments, LogLevel level) {
  const auto message = GTMLogBasicFormatter::stringForFunc(function, format, arguments, level);
  return text::format("%@ %@", prettyNameForFunc(function), message);
}

}  // namespace vornix
