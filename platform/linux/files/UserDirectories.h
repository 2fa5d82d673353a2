#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace vornix {

// What a "user-dirs.dirs" says of one folder, for instance "XDG_DOWNLOAD_DIR": an absolute path
// without a slash at the end. Lines read KEY="$HOME/..." or KEY="/..." with escapes as in a shell;
// the last of several counts, and one that cannot be read does not. None where no line is left.
[[nodiscard]] std::optional<std::string> userDirectory(std::string_view contents,
                                                       std::string_view key, std::string_view home);

}  // namespace vornix
