#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/linux/desktop/applications/DesktopEntry.h"

namespace vornix::desktop {

using CommandLine = std::vector<std::string>;

// The words of an "Exec" value, quotes undone, field codes still in. None when a quote is left
// open or there is no word.
[[nodiscard]] std::optional<CommandLine> wordsOfExec(std::string_view exec);

// What has to be run to open `files`: one command line, or one a file where the entry takes a
// single file. `arguments` follow at the end of each. An entry without a code for files gets them
// after its own words. None, and the reason in `problem`, for an entry that cannot be run.
[[nodiscard]] std::optional<std::vector<CommandLine>> commandLines(
    const DesktopEntry& entry, const std::vector<std::string>& files,
    const std::vector<std::string>& arguments, std::string& problem);

// The words in front of the first field code: what every process of the entry was started with.
// Leading "env" assignments are left out. Empty for an entry that cannot be run.
[[nodiscard]] CommandLine fixedWordsOfExec(std::string_view exec);

}  // namespace vornix::desktop
