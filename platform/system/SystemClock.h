#pragma once

#include <memory>

#include "platform/base/Date.h"

namespace vornix {

// The time, from outside. Any thread.
class SystemClock {
 public:
  virtual ~SystemClock() = default;

  // The wall clock; may jump either way.
  [[nodiscard]] virtual Date now() const = 0;
  // Seconds that the machine has been awake since it was started. Never goes backwards.
  [[nodiscard]] virtual double systemUptime() const = 0;
};

// The machine's own clock, shared by the process and never destroyed.
[[nodiscard]] const SystemClock& sharedSystemClock();

}  // namespace vornix
