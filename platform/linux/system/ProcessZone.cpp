#include "platform/linux/system/ProcessZone.h"

#include <cstdlib>

#include "platform/base/Mutex.h"

namespace vornix {
namespace {

constexpr const char* kVariable = "TZ";

std::optional<std::string> currentName() {
  const char* name = std::getenv(kVariable);
  return name != nullptr ? std::optional<std::string>(name) : std::nullopt;
}

void setName(const std::optional<std::string>& name) {
  if (name) {
    setenv(kVariable, name->c_str(), 1);
  } else {
    unsetenv(kVariable);
  }
}

// The C library knows one zone at a time, the environment's.
class ZoneInForce {
 public:
  explicit ZoneInForce(const std::optional<std::string>& name) : lock_(mutex()) {
    if (const auto current = currentName(); current != name) {
      replaced_ = current;
      setName(name);
    }
    tzset();
  }
  ZoneInForce(const ZoneInForce&) = delete;
  ZoneInForce& operator=(const ZoneInForce&) = delete;
  ~ZoneInForce() {
    if (replaced_) setName(*replaced_);
  }

 private:
  static Mutex& mutex() {
    static auto& shared = *new Mutex;
    return shared;
  }

  const Lock<Mutex> lock_;
  std::optional<std::optional<std::string>> replaced_;
};

}  // namespace

ProcessZone::ProcessZone() : name_(currentName()) {}

std::optional<std::tm> ProcessZone::localTime(std::time_t seconds) const {
  const ZoneInForce zone(name_);
  std::tm local{};
  return localtime_r(&seconds, &local) != nullptr ? std::optional(local) : std::nullopt;
}

}  // namespace vornix
