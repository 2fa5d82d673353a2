#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vornix {

// Answers a variable of the environment; none when it is not set.
using EnvironmentLookup = std::function<std::optional<std::string>(const char*)>;

// A locale's name taken apart ("sr_RS.UTF-8@latin"). All parts empty for "C", "POSIX", the empty
// text and for what is no locale's name.
struct LocaleName {
  std::string language;
  std::string region;
  std::string modifier;

  [[nodiscard]] bool isPlain() const { return language.empty(); }
};

[[nodiscard]] LocaleName parseLocaleName(std::string_view text);

// The script that a modifier names ("latin" gives "Latn"); empty when it names none.
[[nodiscard]] std::string scriptOfModifier(std::string_view modifier);

// The locale of a category ("LC_TIME"): the first of LC_ALL, the category and LANG that is not
// empty; empty when none is set.
[[nodiscard]] std::string localeOfCategory(const char* category, const EnvironmentLookup& lookup);

// Languages as tags ("de-DE"), most preferred first: those of LANGUAGE up to "C", else that of the
// messages' locale.
[[nodiscard]] std::vector<std::string> languagesOfEnvironment(const EnvironmentLookup& lookup);

}  // namespace vornix
