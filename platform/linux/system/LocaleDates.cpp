#include "platform/linux/system/LocaleDates.h"

#include <algorithm>
#include <array>

namespace vornix {
namespace {

// By the common locale data: languages with digits of their own, regions with a calendar of their
// own, and the two languages whose digits depend on the region.
constexpr std::array<std::string_view, 23> kLanguages{
    "ar",  "ars", "as", "bgc", "bho", "bn", "ccp", "ckb", "dz",  "fa", "ks", "lrc",
    "mni", "mr",  "my", "mzn", "ne",  "ps", "raj", "sa",  "sat", "sd", "th"};
constexpr std::array<std::string_view, 4> kRegions{"AF", "IR", "SA", "TH"};

template <std::size_t size>
bool contains(const std::array<std::string_view, size>& names, std::string_view name) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

bool hasUnusualDates(const LocaleName& locale) {
  return contains(kLanguages, locale.language) || contains(kRegions, locale.region) ||
         (locale.language == "pa" && locale.region == "PK") ||
         (locale.language == "ur" && locale.region == "IN") ||
         scriptOfModifier(locale.modifier) == "Arab" ||
         locale.modifier.find('=') != std::string::npos;
}

}  // namespace

std::optional<std::string> icuLocaleOfUnusualDates(const LocaleName& locale) {
  if (locale.isPlain() || !hasUnusualDates(locale)) return std::nullopt;
  std::string name = locale.language;
  const auto script = scriptOfModifier(locale.modifier);
  if (!script.empty()) name += "_" + script;
  if (!locale.region.empty()) name += "_" + locale.region;
  if (locale.modifier.find('=') != std::string::npos) name += "@" + locale.modifier;
  return name;
}

}  // namespace vornix
