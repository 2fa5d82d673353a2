#include "platform/linux/desktop/applications/ProgramIndex.h"

#include <algorithm>

#include "platform/linux/system/ResolvedPath.h"

namespace vornix::desktop {
namespace {

// An interpreter is started with its own options, at most one from the script's first line, and
// then the script.
constexpr std::size_t kLastScriptPosition = 2;

std::string scriptPath(const std::string& argument, const std::string& workingDirectory) {
  if (argument.empty() || argument.front() == '-') return {};
  const bool isAbsolute = argument.front() == '/';
  return resolvedPath(isAbsolute ? argument : workingDirectory + "/" + argument)
      .value_or(std::string());
}

}  // namespace

ProgramIndex::ProgramIndex(const std::vector<DesktopEntry>& entries,
                           const ProgramSearch& programs) {
  for (const DesktopEntry& entry : entries) {
    CommandLine words = fixedWordsOfExec(entry.exec);
    if (entry.runsInTerminal || words.empty()) continue;
    const auto path = programs.find(words.front());
    const std::string program = path ? resolvedPath(*path).value_or(std::string()) : std::string();
    if (program.empty()) continue;
    words.erase(words.begin());
    programs_[program].push_back({entry.identifier, std::move(words)});
  }
}

const ProgramIndex::Program* ProgramIndex::bestMatch(const std::string& path,
                                                     const CommandLine& arguments,
                                                     std::size_t firstArgument) const {
  const auto found = programs_.find(path);
  if (found == programs_.end()) return nullptr;
  const Program* best = nullptr;
  for (const Program& program : found->second) {
    const CommandLine& fixed = program.fixedArguments;
    const bool matches = firstArgument + fixed.size() <= arguments.size() &&
                         std::equal(fixed.begin(), fixed.end(),
                                    arguments.begin() + static_cast<std::ptrdiff_t>(firstArgument));
    const bool isLonger = best == nullptr || fixed.size() > best->fixedArguments.size();
    if (matches && isLonger) best = &program;
  }
  return best;
}

std::string ProgramIndex::identifierOf(const ProcessTable& table, const Process& process) const {
  const CommandLine arguments = table.arguments(process.identifier);
  if (programs_.empty() || arguments.empty()) return {};
  const std::string folder = table.workingDirectory(process.identifier);
  for (std::size_t i = 1; i <= kLastScriptPosition && i < arguments.size(); ++i) {
    const std::string script = scriptPath(arguments[i], folder);
    const Program* match = script.empty() ? nullptr : bestMatch(script, arguments, i + 1);
    if (match != nullptr) return match->identifier;
  }
  const Program* match = bestMatch(table.executable(process.identifier), arguments, 1);
  return match != nullptr ? match->identifier : std::string();
}

}  // namespace vornix::desktop
