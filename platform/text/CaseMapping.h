#pragma once

#include <string>
#include <string_view>

#include "platform/text/CharacterProperties.h"

// Unicode's full case mappings, without any locale. ASCII never loads a library; where there is
// none for the rest, that is said once and other characters stay as they are. Any thread.
namespace vornix::text {

// The final form of sigma at the end of a word; ill-formed bytes and lone surrogates stay.
[[nodiscard]] std::string lowercase(std::string_view text);

// One character in title case, which may be several ("Ss" for a sharp s).
[[nodiscard]] std::string titlecase(char32_t character);

// What stands for the character where case does not matter ("ss" for a sharp s).
[[nodiscard]] FewCharacters caseFolded(char32_t character);

}  // namespace vornix::text
