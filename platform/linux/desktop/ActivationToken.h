#pragma once

#include <string>
#include <vector>

namespace vornix::desktop {

// What proves to the desktop that the person clicked, as programs hand it to those they start.

// The token of the latest click that this process was told of, good for one use; empty when there
// is none, and on any thread but the main one.
[[nodiscard]] std::string takeActivationTokenOfClick();

// The token that the environment ("NAME=VALUE") carries; empty when it carries none.
[[nodiscard]] std::string activationTokenOf(const std::vector<std::string>& environment);

// The environment with the token, or without any where `token` is empty.
[[nodiscard]] std::vector<std::string> environmentWithActivationToken(
    std::vector<std::string> environment, const std::string& token);

}  // namespace vornix::desktop
