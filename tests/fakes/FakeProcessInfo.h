#pragma once

#include <map>

#include "platform/system/NSProcessInfo.h"

namespace vornix::fakes {

// Facts as a test wants them. Set before threads read them.
class FakeProcessInfo final : public NSProcessInfo {
 public:
  std::string name = "program";
  std::int32_t pid = 4711;
  std::map<std::string, std::string, std::less<>> variables;
  std::string user = "ada";
  std::string home = "/home/ada";
  OperatingSystemVersion version{6, 1, 90};
  std::string executable = "/opt/vornix/libexec/vornix/program";
  std::vector<std::string> languages;

  [[nodiscard]] std::string processName() const override { return name; }
  [[nodiscard]] std::int32_t processIdentifier() const override { return pid; }
  [[nodiscard]] std::optional<std::string> environment(std::string_view key) const override {
    const auto found = variables.find(key);
    return found == variables.end() ? std::nullopt : std::optional(found->second);
  }
  [[nodiscard]] std::string userName() const override { return user; }
  [[nodiscard]] std::string homeDirectory() const override { return home; }
  [[nodiscard]] OperatingSystemVersion operatingSystemVersion() const override { return version; }
  [[nodiscard]] std::string executablePath() const override { return executable; }
  [[nodiscard]] std::vector<std::string> localeLanguages() const override { return languages; }
};

// The one that `NSProcessInfo::processInfo` answers on the fake platform.
FakeProcessInfo& processInfo();

}  // namespace vornix::fakes
