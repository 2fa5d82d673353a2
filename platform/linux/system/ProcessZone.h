#pragma once

#include <ctime>
#include <optional>
#include <string>

namespace vornix {

// The process's time zone as it was when this was made, whatever the environment says later. Its
// rules are read at the first use: most short runs print no date. Any thread, as long as none
// changes the environment meanwhile.
class ProcessZone {
 public:
  ProcessZone();

  // None for a time whose year is out of range.
  [[nodiscard]] std::optional<std::tm> localTime(std::time_t seconds) const;

 private:
  std::optional<std::string> name_;
};

}  // namespace vornix
