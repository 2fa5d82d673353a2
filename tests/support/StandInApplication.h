#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/ScratchFolder.h"

namespace vornix::tests {

// What a started stand-in tells about itself.
struct StandInReport {
  std::vector<std::string> arguments;
  std::string processVariable;
  std::string fileVariable;
  std::string activationToken;
  std::string startupId;
  std::string workingDirectory;
  std::int32_t process = 0;
};

// An application that reports how it was started and then stays until its test is over, whatever
// way the test ends.
class StandInApplication {
 public:
  // The desktop entry's identifier; files go below `folder`. `code`: the field code at the end of
  // its command line. `more`: further lines of the entry.
  StandInApplication(const ScratchFolder& folder, std::string_view identifier,
                     std::string_view code = "%F", std::string_view more = "");
  StandInApplication(const StandInApplication&) = delete;
  StandInApplication& operator=(const StandInApplication&) = delete;
  ~StandInApplication();

  // Waits for the next start; none when there is none for half a minute.
  [[nodiscard]] std::optional<StandInReport> nextReport() const;
  // True when a report is there already.
  [[nodiscard]] bool hasReport() const;
  // To be the data folder (XDG_DATA_HOME) of the session.
  [[nodiscard]] static std::string dataFolder(const ScratchFolder& folder);
  [[nodiscard]] const std::string& entryPath() const { return entryPath_; }
  [[nodiscard]] const std::string& programPath() const { return programPath_; }

 private:
  std::string entryPath_;
  std::string programPath_;
  int reports_ = -1;
  int life_ = -1;
};

// Waits until the process has ended; false when that takes longer than half a minute.
[[nodiscard]] bool waitForEnd(std::int32_t process);

}  // namespace vornix::tests
