#include "platform/linux/desktop/applications/ApplicationStart.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <random>
#include <string_view>

#include "platform/base/Diagnostics.h"
#include "platform/base/PathText.h"
#include "platform/base/Text.h"
#include "platform/linux/desktop/ActivationToken.h"
#include "platform/linux/desktop/applications/ApplicationUnit.h"
#include "platform/linux/desktop/applications/DetachedProcess.h"
#include "platform/linux/desktop/applications/ExecLine.h"

namespace vornix::desktop {
namespace {

constexpr std::string_view kLaunchedFile = "GIO_LAUNCHED_DESKTOP_FILE";
constexpr std::string_view kLaunchedProcess = "GIO_LAUNCHED_DESKTOP_FILE_PID";
constexpr std::string_view kTerminal = "x-terminal-emulator";

// What tells a service about itself means something else, or harm, to a program that it starts.
constexpr std::array<std::string_view, 17> kOfTheStarter{"DBUS_STARTER_ADDRESS",
                                                         "DBUS_STARTER_BUS_TYPE",
                                                         "INVOCATION_ID",
                                                         "JOURNAL_STREAM",
                                                         "NOTIFY_SOCKET",
                                                         "LISTEN_FDS",
                                                         "LISTEN_FDNAMES",
                                                         "LISTEN_PID",
                                                         "WATCHDOG_PID",
                                                         "WATCHDOG_USEC",
                                                         "MAINPID",
                                                         "MANAGERPID",
                                                         "SYSTEMD_EXEC_PID",
                                                         "RUNTIME_DIRECTORY",
                                                         "STATE_DIRECTORY",
                                                         "CREDENTIALS_DIRECTORY",
                                                         "MEMORY_PRESSURE_WATCH"};

bool isOfTheStarter(const std::string& variable) {
  const std::string_view name = std::string_view(variable).substr(0, variable.find('='));
  return name == kLaunchedFile || name == kLaunchedProcess ||
         std::ranges::find(kOfTheStarter, name) != kOfTheStarter.end();
}

std::string randomName() {
  constexpr std::string_view digits = "0123456789abcdef";
  std::random_device device;
  std::string name;
  for (int i = 0; i < 4; ++i) {
    const unsigned int bits = device();
    for (unsigned int shift = 0; shift < 32; shift += 8) name += digits[(bits >> shift) & 15U];
  }
  return name;
}

NSError startError(const std::string& text) {
  NSError error = posixError(ENOEXEC, text);
  error.localizedDescription = text;
  return error;
}

// A path without folder means another file where the application has a working folder of its own.
// An address ("https://...") stays.
std::string absolute(const std::string& file, const std::string& folder) {
  const bool isAddress = file.find("://") != std::string::npos;
  if (file.empty() || file.starts_with('/') || isAddress) return file;
  return text::appendingPathComponent(folder, file);
}

class Start {
 public:
  Start(const DesktopEntry& entry, const ApplicationStartRequest& request,
        const DesktopSession& session, ApplicationBus& bus)
      : entry_(entry), session_(session), bus_(bus), environment_(session.environment) {
    std::erase_if(environment_, isOfTheStarter);
    environment_ = environmentWithActivationToken(std::move(environment_), request.activationToken);
    if (isOfFile()) environment_.push_back(std::string(kLaunchedFile) + "=" + entry.path);
  }

  std::optional<std::int32_t> run(const std::vector<CommandLine>& lines,
                                  std::optional<NSError>& error) {
    std::optional<std::int32_t> first;
    for (CommandLine line : lines) {
      const auto program = resolve(line, error);
      const auto process = program ? start(*program, line, error) : std::nullopt;
      if (!process) return std::nullopt;
      if (!first) first = process;
    }
    return first;
  }

 private:
  [[nodiscard]] bool isOfFile() const { return !entry_.path.empty(); }

  [[nodiscard]] std::optional<std::string> resolve(CommandLine& line,
                                                   std::optional<NSError>& error) const {
    const ProgramSearch programs(session_.programFolders);
    if (entry_.runsInTerminal) line.insert(line.begin(), {std::string(kTerminal), "-e"});
    auto program = programs.find(line.front());
    if (!program) {
      error = startError((isOfFile() ? entry_.path : entry_.identifier) + ": the program \"" +
                         line.front() + "\" is missing");
      return std::nullopt;
    }
    // A path is relative to where we are, also when the application starts elsewhere.
    return absolute(*program, session_.workingDirectory);
  }

  [[nodiscard]] std::optional<std::int32_t> start(const std::string& program,
                                                  const CommandLine& line,
                                                  std::optional<NSError>& error) {
    if (const auto service = transientService(program, line)) {
      const auto refusal = bus_.startTransientService(*service);
      if (!refusal) return bus_.mainProcess(service->unit).value_or(0);
      reportDiagnostic("starting " + entry_.identifier +
                       " without the service manager: " + refusal->localizedDescription);
    }
    return startDetached({.path = program,
                          .arguments = line,
                          .environment = environment_,
                          .processVariable = std::string(isOfFile() ? kLaunchedProcess : ""),
                          .workingDirectory = entry_.workingDirectory},
                         error);
  }

  // None where there is no service manager, or it could not be told this command line.
  [[nodiscard]] std::optional<TransientService> transientService(const std::string& program,
                                                                 const CommandLine& line) {
    const bool isText = text::isValidUtf8(program) &&
                        std::ranges::all_of(line, text::isValidUtf8) &&
                        text::isValidUtf8(entry_.identifier);
    if (!isText || !bus_.hasServiceManager()) return std::nullopt;
    TransientService service{.unit = serviceUnitName(entry_.identifier, randomName()),
                             .description = text::isValidUtf8(entry_.name) ? entry_.name : "",
                             .program = program,
                             .arguments = line,
                             .environment = environment_,
                             .workingDirectory = entry_.workingDirectory};
    std::erase_if(service.environment,
                  [](const std::string& variable) { return !text::isValidUtf8(variable); });
    return service;
  }

  const DesktopEntry& entry_;
  const DesktopSession& session_;
  ApplicationBus& bus_;
  std::vector<std::string> environment_;
};

}  // namespace

std::optional<std::int32_t> startApplication(const DesktopEntry& entry,
                                             const ApplicationStartRequest& request,
                                             const DesktopSession& session, ApplicationBus& bus,
                                             std::optional<NSError>& error) {
  std::vector<std::string> files;
  for (const std::string& file : request.files)
    files.push_back(absolute(file, session.workingDirectory));
  std::string problem;
  const auto lines = commandLines(entry, files, request.arguments, problem);
  if (!lines) {
    error = startError(problem);
    return std::nullopt;
  }
  return Start(entry, request, session, bus).run(*lines, error);
}

}  // namespace vornix::desktop
