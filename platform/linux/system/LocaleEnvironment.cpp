#include "platform/linux/system/LocaleEnvironment.h"

#include <algorithm>
#include <array>
#include <utility>

#include "platform/base/Text.h"

namespace vornix {
namespace {

bool isLanguage(std::string_view text) {
  return text.size() >= 2 && text.size() <= 8 &&
         std::all_of(text.begin(), text.end(), text::isAsciiLetter);
}

bool isRegion(std::string_view text) {
  return (text.size() == 2 && std::all_of(text.begin(), text.end(), text::isAsciiLetter)) ||
         (text.size() == 3 && std::all_of(text.begin(), text.end(), text::isAsciiDigit));
}

// What stands before the first of the marks, taken off the text.
std::string_view takeUntil(std::string_view& text, std::string_view marks) {
  const auto end = std::min(text.find_first_of(marks), text.size());
  const auto piece = text.substr(0, end);
  text.remove_prefix(end);
  return piece;
}

std::string tagOf(const LocaleName& locale) {
  std::string tag = locale.language;
  const auto script = scriptOfModifier(locale.modifier);
  if (!script.empty()) tag += "-" + script;
  if (!locale.region.empty()) tag += "-" + locale.region;
  return tag;
}

}  // namespace

LocaleName parseLocaleName(std::string_view text) {
  const auto language = takeUntil(text, "_-.@");
  const bool hasRegion = text.starts_with('_') || text.starts_with('-');
  if (hasRegion) text.remove_prefix(1);
  const auto region = hasRegion ? takeUntil(text, ".@") : std::string_view();
  takeUntil(text, "@");
  if (!isLanguage(language) || language == "POSIX" || (hasRegion && !isRegion(region))) return {};
  return {text::asciiLowercase(language), text::asciiUppercase(region),
          std::string(text.empty() ? text : text.substr(1))};
}

std::string scriptOfModifier(std::string_view modifier) {
  constexpr std::array<std::pair<std::string_view, const char*>, 4> kScripts{
      {{"latin", "Latn"}, {"cyrillic", "Cyrl"}, {"devanagari", "Deva"}, {"arabic", "Arab"}}};
  for (const auto& [name, script] : kScripts) {
    if (modifier == name) return script;
  }
  return {};
}

std::string localeOfCategory(const char* category, const EnvironmentLookup& lookup) {
  for (const char* name : {"LC_ALL", category, "LANG"}) {
    auto value = lookup(name);
    if (value && !value->empty()) return *std::move(value);
  }
  return {};
}

std::vector<std::string> languagesOfEnvironment(const EnvironmentLookup& lookup) {
  auto names = text::split(lookup("LANGUAGE").value_or(""), ":");
  if (names.size() == 1 && names.front().empty()) {
    names = {localeOfCategory("LC_MESSAGES", lookup)};
  }
  std::vector<std::string> languages;
  for (const auto& name : names) {
    if (name == "C" || name == "POSIX") break;
    const auto locale = parseLocaleName(name);
    auto tag = tagOf(locale);
    const bool known = std::find(languages.begin(), languages.end(), tag) != languages.end();
    if (!locale.isPlain() && !known) languages.push_back(std::move(tag));
  }
  return languages;
}

}  // namespace vornix
