#pragma once

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "platform/linux/desktop/applications/ApplicationBus.h"
#include "platform/linux/desktop/applications/WindowActivation.h"

namespace vornix::tests {

// A message bus in memory.
class FakeApplicationBus final : public desktop::ApplicationBus {
 public:
  // Names and the processes that own them; 0 for one that cannot be told.
  std::vector<std::pair<std::string, std::int32_t>> owners;
  std::string token;
  bool managerRuns = false;
  std::optional<NSError> startError;
  std::int32_t serviceProcess = 0;

  int listsAsked = 0;
  // Name and token.
  std::vector<std::pair<std::string, std::string>> activated;
  std::vector<desktop::TransientService> services;

  [[nodiscard]] std::vector<std::string> ownedNames() override {
    ++listsAsked;
    std::vector<std::string> names;
    for (const auto& [name, process] : owners) names.push_back(name);
    return names;
  }
  [[nodiscard]] std::optional<std::int32_t> processOwning(const std::string& name) override {
    for (const auto& [owned, process] : owners) {
      if (owned == name && process != 0) return process;
    }
    return std::nullopt;
  }
  [[nodiscard]] std::string takeActivationToken() override { return std::exchange(token, {}); }
  bool activate(const std::string& name, const std::string& withToken) override {
    activated.emplace_back(name, withToken);
    return true;
  }
  [[nodiscard]] bool hasServiceManager() override { return managerRuns; }
  [[nodiscard]] std::optional<NSError> startTransientService(
      const desktop::TransientService& service) override {
    services.push_back(service);
    return startError;
  }
  [[nodiscard]] std::optional<std::int32_t> mainProcess(const std::string& /*unit*/) override {
    return serviceProcess > 0 ? std::optional(serviceProcess) : std::nullopt;
  }
};

// Windows of the given processes.
class FakeWindowActivation final : public desktop::WindowActivation {
 public:
  std::vector<std::int32_t> processesWithWindows;
  std::vector<std::int32_t> asked;

  bool bringToFront(std::int32_t process, const std::string& /*identifier*/) override {
    asked.push_back(process);
    return std::ranges::find(processesWithWindows, process) != processesWithWindows.end();
  }
};

}  // namespace vornix::tests
