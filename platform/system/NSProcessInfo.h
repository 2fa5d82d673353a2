#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vornix {

struct OperatingSystemVersion {
  int major = 0;
  int minor = 0;
  int patch = 0;
};

// Facts about this process, its account and its host. Any thread.
class NSProcessInfo {
 public:
  virtual ~NSProcessInfo() = default;

  // The executable's name without its folder; empty when it cannot be told.
  [[nodiscard]] virtual std::string processName() const = 0;
  [[nodiscard]] virtual std::int32_t processIdentifier() const = 0;
  // A variable of the environment; none when it is not set.
  [[nodiscard]] virtual std::optional<std::string> environment(std::string_view name) const = 0;
  // Login name of the real user; the number as text when the account has no name.
  [[nodiscard]] virtual std::string userName() const = 0;
  // Absolute, without a trailing slash: HOME, else the account's home.
  [[nodiscard]] virtual std::string homeDirectory() const = 0;
  [[nodiscard]] virtual OperatingSystemVersion operatingSystemVersion() const = 0;
  // Absolute path of the running program; empty when it cannot be told.
  [[nodiscard]] virtual std::string executablePath() const = 0;
  // Languages of the locale environment as tags ("de-DE"), most preferred first; none for "C".
  [[nodiscard]] virtual std::vector<std::string> localeLanguages() const = 0;

  // The process's own, never destroyed.
  [[nodiscard]] static const NSProcessInfo& processInfo();
};

}  // namespace vornix
