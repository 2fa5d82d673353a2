#include "analytics/HostTexts.h"

#include <cstdint>

#include "platform/base/Format.h"
#include "platform/base/Text.h"
#include "platform/base/Value.h"

namespace vornix {
namespace {

std::int64_t widthOf(const SizeProvider& provider) {
  return Value(provider().value_or(Size{}).width).integerValue();
}

std::int64_t heightOf(const SizeProvider& provider) {
  return Value(provider().value_or(Size{}).height).integerValue();
}

}  // namespace

std::string userAgentText(std::string_view applicationVersion,
                          const OperatingSystemVersion& system) {
  return text::format("%@/%@ (Macintosh; Intel Mac OS X %d_%d_%d)", text::productName,
                      applicationVersion, system.major, system.minor, system.patch);
}

std::string systemInfoText(const SizeProvider& screen, const SizeProvider& window,
                           const std::vector<std::string>& languages) {
  const auto language = languages.empty() ? std::string("en") : languages.front();
  const auto screenWidth = widthOf(screen);
  const auto screenHeight = heightOf(screen);
  const auto windowWidth = widthOf(window);
  const auto windowHeight = heightOf(window);
  return text::format("&sr=%ldx%ld&vp=%ldx%ld&ul=%@", screenWidth, screenHeight, windowWidth,
                      windowHeight, language);
}

bool isBetaVersion(std::string_view version) {
  return text::asciiLowercase(version).find('b') != std::string::npos;
}

}  // namespace vornix
