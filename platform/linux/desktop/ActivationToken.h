#pragma once

#include <string>
#include <vector>

namespace vornix::desktop {

// The desktop's proof that the person has just clicked: whoever presents it may take the focus.
// The process has one at a time, that of the latest click. Any thread.

// Called for each click, before it is handled; empty for one that came without a token.
void setActivationToken(std::string token);

// That of the latest click; before the first one, what this process was itself started with; may
// be empty.
[[nodiscard]] std::string activationToken();

// `environment` ("NAME=VALUE") with the token in the variables by which a started program takes it
// over, or without those variables where the token is empty.
[[nodiscard]] std::vector<std::string> environmentWithActivationToken(
    std::vector<std::string> environment, const std::string& token);

}  // namespace vornix::desktop
