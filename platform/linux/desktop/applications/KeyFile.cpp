#include "platform/linux/desktop/applications/KeyFile.h"

#include <vector>

namespace vornix::desktop {
namespace {

constexpr std::string_view kBlanks = " \t\r";

std::string_view withoutBlanks(std::string_view text) {
  const auto first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

char escaped(char letter) {
  switch (letter) {
    case 's':
      return ' ';
    case 'n':
      return '\n';
    case 't':
      return '\t';
    case 'r':
      return '\r';
    default:
      return letter;
  }
}

// A backslash before any other letter stays: the letter may have a meaning further on.
bool isEscape(char letter) {
  return std::string_view("sntr\\").find(letter) != std::string_view::npos;
}

std::string withoutEscapes(std::string_view raw) {
  std::string text;
  text.reserve(raw.size());
  for (std::size_t i = 0; i < raw.size(); ++i) {
    const bool starts = raw[i] == '\\' && i + 1 < raw.size() && isEscape(raw[i + 1]);
    text += starts ? escaped(raw[++i]) : raw[i];
  }
  return text;
}

struct Locale {
  std::string language;
  std::string country;
  std::string modifier;
};

// "lang_COUNTRY.ENCODING@MODIFIER", each part but the first optional.
Locale partsOf(std::string_view locale) {
  const auto cut = [&locale](char mark) {
    const auto at = locale.find(mark);
    if (at == std::string_view::npos) return std::string();
    std::string part(locale.substr(at + 1));
    locale = locale.substr(0, at);
    return part;
  };
  Locale parts;
  parts.modifier = cut('@');
  static_cast<void>(cut('.'));
  parts.country = cut('_');
  parts.language = locale;
  return parts;
}

std::vector<std::string> languagesOf(std::string_view locale) {
  const Locale parts = partsOf(locale);
  if (parts.language.empty()) return {};
  const std::string withCountry = parts.language + "_" + parts.country;
  std::vector<std::string> languages;
  if (!parts.country.empty() && !parts.modifier.empty())
    languages.push_back(withCountry + "@" + parts.modifier);
  if (!parts.country.empty()) languages.push_back(withCountry);
  if (!parts.modifier.empty()) languages.push_back(parts.language + "@" + parts.modifier);
  languages.push_back(parts.language);
  return languages;
}

}  // namespace

KeyFile KeyFile::parse(std::string_view contents) {
  KeyFile file;
  Group* group = nullptr;
  while (!contents.empty()) {
    const auto end = contents.find('\n');
    const std::string_view line = withoutBlanks(contents.substr(0, end));
    contents = end == std::string_view::npos ? std::string_view() : contents.substr(end + 1);
    if (line.empty() || line.front() == '#') continue;
    if (line.front() == '[' && line.back() == ']') {
      group = &file.groups_[std::string(line.substr(1, line.size() - 2))];
      continue;
    }
    const auto equals = line.find('=');
    if (group == nullptr || equals == std::string_view::npos) continue;
    const std::string_view key = withoutBlanks(line.substr(0, equals));
    if (!key.empty())
      (*group)[std::string(key)] = std::string(withoutBlanks(line.substr(equals + 1)));
  }
  return file;
}

bool KeyFile::hasGroup(std::string_view group) const {
  return groups_.contains(group);
}

std::optional<std::string> KeyFile::string(std::string_view group, std::string_view key) const {
  const auto found = groups_.find(group);
  if (found == groups_.end()) return std::nullopt;
  const auto value = found->second.find(key);
  if (value == found->second.end()) return std::nullopt;
  return withoutEscapes(value->second);
}

std::optional<std::string> KeyFile::localizedString(std::string_view group, std::string_view key,
                                                    std::string_view locale) const {
  for (const std::string& language : languagesOf(locale)) {
    if (auto value = string(group, std::string(key) + "[" + language + "]")) return value;
  }
  return string(group, key);
}

bool KeyFile::boolean(std::string_view group, std::string_view key) const {
  const auto value = string(group, key);
  return value == "true" || value == "1";
}

}  // namespace vornix::desktop
