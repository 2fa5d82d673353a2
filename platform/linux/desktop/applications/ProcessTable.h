#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/base/Date.h"

namespace vornix::desktop {

struct Process {
  std::int32_t identifier = 0;
  std::int32_t parent = 0;
  // Clock ticks from the start of the machine to the start of the process.
  std::uint64_t startTicks = 0;
};

// The processes of one account. Every answer is empty for a process that has ended meanwhile.
class ProcessTable {
 public:
  // `root`: where the kernel shows its processes.
  ProcessTable(std::string root, std::uint32_t user);

  // In the order in which they were started, without those that have ended and wait to be reaped.
  [[nodiscard]] std::vector<Process> processes() const;
  // The path of the control group that a service manager put it into.
  [[nodiscard]] std::string controlGroup(std::int32_t process) const;
  // A variable of the environment that it was started with.
  [[nodiscard]] std::optional<std::string> startVariable(std::int32_t process,
                                                         std::string_view name) const;
  [[nodiscard]] std::vector<std::string> arguments(std::int32_t process) const;
  // Resolved; of a program that has been replaced on disk meanwhile, the path that it had.
  [[nodiscard]] std::string executable(std::int32_t process) const;
  [[nodiscard]] std::string workingDirectory(std::int32_t process) const;
  [[nodiscard]] Date launchDate(const Process& process) const;
  // The same by number; the reference date when there is no such process.
  [[nodiscard]] Date launchDateOf(std::int32_t process) const;

 private:
  [[nodiscard]] std::string file(std::int32_t process, std::string_view name) const;
  [[nodiscard]] std::string link(std::int32_t process, std::string_view name) const;
  [[nodiscard]] bool belongsToUser(std::int32_t process) const;
  [[nodiscard]] std::optional<Process> read(std::int32_t process) const;

  std::string root_;
  std::uint32_t user_;
};

}  // namespace vornix::desktop
