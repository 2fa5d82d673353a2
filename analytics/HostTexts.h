#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/desktop/NSScreen.h"
#include "platform/system/NSProcessInfo.h"

// Texts about the machine, as the tracker and the workspace both report them.
namespace vornix {

// "Vornix/VERSION (Macintosh; Intel Mac OS X MAJOR_MINOR_PATCH)".
[[nodiscard]] std::string userAgentText(std::string_view applicationVersion,
                                        const OperatingSystemVersion& system);

using SizeProvider = std::function<std::optional<Size>()>;

// The main window of a program that has none.
[[nodiscard]] inline std::optional<Size> noWindow() {
  return std::nullopt;
}

// "&sr=WxH&vp=WxH&ul=LANGUAGE": screen, main window and the first language ("en" for an empty
// list). Each number is asked for afresh; an absent size counts as zeros.
[[nodiscard]] std::string systemInfoText(const SizeProvider& screen, const SizeProvider& window,
                                         const std::vector<std::string>& languages);

// True for a version that names a beta: it holds the letter b, large or small.
[[nodiscard]] bool isBetaVersion(std::string_view version);

}  // namespace vornix
