#pragma once

namespace vornix::text {

// White space and line ends as the platform has them: Unicode's, and U+200B.
[[nodiscard]] bool isWhiteSpaceOrNewline(char32_t character);
// Line ends alone: LF, VT, FF, CR, U+0085 and the line and paragraph separators.
[[nodiscard]] bool isNewline(char32_t character);

}  // namespace vornix::text
