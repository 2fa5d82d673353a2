#include "platform/linux/desktop/ActivationToken.h"

#include <mutex>
#include <optional>
#include <string_view>
#include <utility>

#include "platform/system/NSProcessInfo.h"

namespace vornix::desktop {
namespace {

constexpr std::string_view kToken = "XDG_ACTIVATION_TOKEN";
constexpr std::string_view kStartupId = "DESKTOP_STARTUP_ID";

struct Holder {
  std::mutex mutex;
  std::optional<std::string> token;
};

Holder& holder() {
  static auto& shared = *new Holder;
  return shared;
}

bool sets(const std::string& variable, std::string_view name) {
  return variable.size() > name.size() && variable.starts_with(name) &&
         variable[name.size()] == '=';
}

}  // namespace

void setActivationToken(std::string token) {
  const std::lock_guard lock(holder().mutex);
  holder().token = std::move(token);
}

std::string activationToken() {
  const std::lock_guard lock(holder().mutex);
  if (holder().token) return *holder().token;
  const NSProcessInfo& process = NSProcessInfo::processInfo();
  const auto token = process.environment(kToken);
  return token && !token->empty() ? *token : process.environment(kStartupId).value_or("");
}

std::vector<std::string> environmentWithActivationToken(std::vector<std::string> environment,
                                                        const std::string& token) {
  std::erase_if(environment, [](const std::string& variable) {
    return sets(variable, kToken) || sets(variable, kStartupId);
  });
  if (!token.empty()) {
    environment.push_back(std::string(kToken) + "=" + token);
    environment.push_back(std::string(kStartupId) + "=" + token);
  }
  return environment;
}

}  // namespace vornix::desktop
