#include "platform/linux/desktop/ActivationToken.h"

#include <array>
#include <string_view>

#include "platform/linux/bus/SessionBus.h"

namespace vornix::desktop {
namespace {

// The newer name first.
constexpr std::array<std::string_view, 2> kVariables{"XDG_ACTIVATION_TOKEN=",
                                                     "DESKTOP_STARTUP_ID="};

}  // namespace

std::string takeActivationTokenOfClick() {
  return isMainThread() ? SessionBus::shared().takeActivationToken() : std::string();
}

std::string activationTokenOf(const std::vector<std::string>& environment) {
  for (const std::string_view start : kVariables) {
    for (const std::string& variable : environment) {
      if (variable.starts_with(start) && variable.size() > start.size())
        return variable.substr(start.size());
    }
  }
  return {};
}

std::vector<std::string> environmentWithActivationToken(std::vector<std::string> environment,
                                                        const std::string& token) {
  for (const std::string_view start : kVariables) {
    std::erase_if(environment,
                  [start](const std::string& variable) { return variable.starts_with(start); });
    if (!token.empty()) environment.push_back(std::string(start) + token);
  }
  return environment;
}

}  // namespace vornix::desktop
