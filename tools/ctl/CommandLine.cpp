#include "tools/ctl/CommandLine.h"

#include <algorithm>

namespace vornix::tools {
namespace {

bool asksForHelp(std::string_view word) {
  return word == "help" || word == "-h" || word == "--help";
}

std::string synopsisOf(const Command& command) {
  std::string synopsis(command.name);
  if (!command.options.empty()) synopsis.append(" ").append(command.options);
  return synopsis;
}

}  // namespace

CommandResult badUsage(std::string_view sentence) {
  return {.status = kBadUsage,
          .errors = "vornixctl: " + std::string(sentence) + "\nTry \"vornixctl help\".\n"};
}

std::string usageOf(std::span<const Command> commands) {
  std::size_t width = std::string_view("help").size();
  for (const auto& command : commands) width = std::max(width, synopsisOf(command).size());
  std::string usage = "usage: vornixctl COMMAND\n";
  const auto add = [&](std::string synopsis, std::string_view summary) {
    synopsis.resize(width, ' ');
    usage.append("  ").append(synopsis).append("   ").append(summary).append("\n");
  };
  for (const auto& command : commands) add(synopsisOf(command), command.summary);
  add("help", "shows this text");
  return usage;
}

CommandResult runCommandLine(std::span<const Command> commands, Words words) {
  if (words.empty()) return badUsage("no command is given");
  const std::string_view name = words.front();
  const Words rest = words.subspan(1);
  if (asksForHelp(name)) {
    if (!rest.empty()) return badUsage("help takes nothing behind it");
    return {.output = usageOf(commands)};
  }
  const auto found = std::find_if(commands.begin(), commands.end(),
                                  [name](const auto& command) { return command.name == name; });
  if (found != commands.end()) return found->run(rest);
  return badUsage("there is no command \"" + std::string(name) + "\"");
}

}  // namespace vornix::tools
