#pragma once

#include <functional>
#include <span>
#include <string>
#include <string_view>

// The frame of the person's tool: commands by name, and what becomes of one.
namespace vornix::tools {

inline constexpr int kDone = 0;
inline constexpr int kFailed = 1;
inline constexpr int kBadUsage = 2;

// Words of a command line.
using Words = std::span<const char* const>;

struct CommandResult {
  int status = kDone;
  // For standard output and for standard error.
  std::string output{};
  std::string errors{};
};

struct Command {
  std::string_view name;
  // What may follow the name, as the usage shows it.
  std::string_view options;
  std::string_view summary;
  // Gets the words behind its name.
  std::function<CommandResult(Words)> run;
};

// A command line that makes no sense: `sentence` says why, and the usage follows.
[[nodiscard]] CommandResult badUsage(std::string_view sentence);

[[nodiscard]] std::string usageOf(std::span<const Command> commands);

// Runs the command that the first word names. "help", "-h" and "--help" print the usage. `words`:
// the command line without the program's name.
[[nodiscard]] CommandResult runCommandLine(std::span<const Command> commands, Words words);

}  // namespace vornix::tools
