#include "platform/linux/desktop/applications/ProcessTable.h"

#include <dirent.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <climits>
#include <tuple>

#include "platform/base/Text.h"
#include "platform/linux/desktop/applications/SmallFile.h"
#include "platform/linux/system/FolderHandle.h"

namespace vornix::desktop {
namespace {

// More than the kernel lets a program be started with.
constexpr std::size_t kLargestFile = std::size_t{8} << 20U;
constexpr std::string_view kDeleted = " (deleted)";

template <typename Number>
std::optional<Number> numberOf(std::string_view text) {
  Number number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return number;
}

// The value of the line that starts with `label`, without white space at its ends.
std::string_view lineAfter(std::string_view contents, std::string_view label) {
  while (!contents.empty()) {
    const auto end = contents.find('\n');
    const std::string_view line = contents.substr(0, end);
    if (line.starts_with(label)) return text::trim(line.substr(label.size()));
    contents = end == std::string_view::npos ? std::string_view() : contents.substr(end + 1);
  }
  return {};
}

// Strings that end with a zero byte each.
std::vector<std::string> stringsOf(std::string_view contents) {
  if (contents.ends_with('\0')) contents.remove_suffix(1);
  if (contents.empty()) return {};
  return text::split(contents, std::string_view("\0", 1));
}

}  // namespace

ProcessTable::ProcessTable(std::string root, std::uint32_t user)
    : root_(std::move(root)), user_(user) {}

std::string ProcessTable::file(std::int32_t process, std::string_view name) const {
  const std::string path = root_ + "/" + std::to_string(process) + "/" + std::string(name);
  return readSmallFile(path, kLargestFile).value_or("");
}

std::string ProcessTable::link(std::int32_t process, std::string_view name) const {
  const std::string path = root_ + "/" + std::to_string(process) + "/" + std::string(name);
  std::array<char, PATH_MAX> target{};
  const ssize_t length = readlink(path.c_str(), target.data(), target.size());
  return length > 0 ? std::string(target.data(), static_cast<std::size_t>(length)) : std::string();
}

bool ProcessTable::belongsToUser(std::int32_t process) const {
  const std::string status = file(process, "status");
  const std::string_view users = lineAfter(status, "Uid:");
  return numberOf<std::uint32_t>(users.substr(0, users.find('\t'))) == user_;
}

std::optional<Process> ProcessTable::read(std::int32_t process) const {
  if (!belongsToUser(process)) return std::nullopt;
  const std::string contents = file(process, "stat");
  // The program's name stands in parentheses and may hold any character.
  const auto nameEnd = contents.rfind(") ");
  if (nameEnd == std::string::npos) return std::nullopt;
  const auto fields = text::split(text::trim(std::string_view(contents).substr(nameEnd + 2)), " ");
  constexpr std::size_t kState = 0;
  constexpr std::size_t kParent = 1;
  constexpr std::size_t kStart = 19;
  if (fields.size() <= kStart || fields[kState] == "Z" || fields[kState] == "X")
    return std::nullopt;
  return Process{.identifier = process,
                 .parent = numberOf<std::int32_t>(fields[kParent]).value_or(0),
                 .startTicks = numberOf<std::uint64_t>(fields[kStart]).value_or(0)};
}

std::vector<Process> ProcessTable::processes() const {
  std::vector<Process> processes;
  const FolderHandle folder = openFolder(root_);
  while (const dirent* item = folder ? readdir(folder.get()) : nullptr) {
    const auto number = numberOf<std::int32_t>(&item->d_name[0]);
    if (!number || *number <= 0) continue;
    if (const auto process = read(*number)) processes.push_back(*process);
  }
  std::ranges::sort(processes, {}, [](const Process& process) {
    return std::tuple(process.startTicks, process.identifier);
  });
  return processes;
}

std::string ProcessTable::controlGroup(std::int32_t process) const {
  const std::string contents = file(process, "cgroup");
  std::string_view group = lineAfter(contents, "0::");
  // Where the old hierarchies are still in use, the service manager keeps one under its name.
  constexpr std::string_view kNamed = ":name=systemd:";
  const auto named = contents.find(kNamed);
  if (named != std::string::npos && (group.empty() || group == "/"))
    group = lineAfter(std::string_view(contents).substr(named), kNamed);
  if (group.ends_with(kDeleted)) group.remove_suffix(kDeleted.size());
  return std::string(group);
}

std::optional<std::string> ProcessTable::startVariable(std::int32_t process,
                                                       std::string_view name) const {
  const std::string start = std::string(name) + "=";
  for (const std::string& variable : stringsOf(file(process, "environ"))) {
    if (variable.starts_with(start)) return variable.substr(start.size());
  }
  return std::nullopt;
}

std::vector<std::string> ProcessTable::arguments(std::int32_t process) const {
  return stringsOf(file(process, "cmdline"));
}

std::string ProcessTable::executable(std::int32_t process) const {
  std::string path = link(process, "exe");
  if (path.ends_with(kDeleted)) path.resize(path.size() - kDeleted.size());
  return path;
}

std::string ProcessTable::workingDirectory(std::int32_t process) const {
  return link(process, "cwd");
}

Date ProcessTable::launchDate(const Process& process) const {
  const std::string contents = readSmallFile(root_ + "/stat", kLargestFile).value_or("");
  const double boot = text::doubleValue(lineAfter(contents, "btime"));
  const auto ticksPerSecond = static_cast<double>(sysconf(_SC_CLK_TCK));
  return Date::fromUnixTime(boot + static_cast<double>(process.startTicks) / ticksPerSecond);
}

Date ProcessTable::launchDateOf(std::int32_t process) const {
  const auto found = read(process);
  return found ? launchDate(*found) : Date{};
}

}  // namespace vornix::desktop
