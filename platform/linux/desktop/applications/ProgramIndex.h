#pragma once

#include <string>
#include <unordered_map>
#include <vector>

#include "platform/linux/desktop/applications/ExecLine.h"
#include "platform/linux/desktop/applications/InstalledApplications.h"
#include "platform/linux/desktop/applications/ProcessTable.h"

namespace vornix::desktop {

// Finds the application of a process by the program or script that it runs.
class ProgramIndex {
 public:
  // Entries that run in a terminal are left out: their programs are no applications of their own.
  ProgramIndex(const std::vector<DesktopEntry>& entries, const ProgramSearch& programs);

  // The identifier of the entry whose command line the process was started with, the longest where
  // several match; empty when none does.
  [[nodiscard]] std::string identifierOf(const ProcessTable& table, const Process& process) const;

 private:
  struct Program {
    std::string identifier;
    // What follows the program on the entry's command line, up to its first field code.
    CommandLine fixedArguments;
  };
  [[nodiscard]] const Program* bestMatch(const std::string& path, const CommandLine& arguments,
                                         std::size_t firstArgument) const;

  // By resolved path.
  std::unordered_map<std::string, std::vector<Program>> programs_;
};

}  // namespace vornix::desktop
