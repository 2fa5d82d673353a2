#include "platform/linux/desktop/applications/RunningApplications.h"

#include <algorithm>
#include <map>
#include <set>
#include <unordered_set>
#include <utility>

#include "platform/base/PathText.h"
#include "platform/linux/desktop/applications/ApplicationUnit.h"
#include "platform/linux/desktop/applications/ProgramIndex.h"

namespace vornix::desktop {
namespace {

// One bus may go with and without its number.
std::string withoutDetails(std::string_view busAddress) {
  return std::string(busAddress.substr(0, busAddress.find(',')));
}

class Search {
 public:
  Search(const InstalledApplications& installed, const ProcessTable& table, ApplicationBus& bus,
         std::string_view busAddress)
      : table_(table),
        bus_(bus),
        busAddress_(withoutDetails(busAddress)),
        entries_(installed.entries()),
        programs_(entries_, installed.programs()),
        processes_(table.processes()) {
    for (const DesktopEntry& entry : entries_) identifiers_.insert(entry.identifier);
    for (const Process& process : processes_) parents_[process.identifier] = process.parent;
  }

  std::vector<RunningApplicationEntry> run() {
    takeNameOwners();
    for (const Process& process : processes_) {
      if (!found_.contains(process.identifier)) examine(process);
    }
    return inLaunchOrder();
  }

 private:
  void takeNameOwners() {
    for (const std::string& name : bus_.ownedNames()) {
      if (!identifiers_.contains(name)) continue;
      const auto owner = bus_.processOwning(name);
      // A program in a sandbox may own a name without being visible as a process.
      if (!owner || *owner <= 0 || !parents_.contains(*owner)) {
        unseen_.push_back(name);
      } else if (!found_.contains(*owner)) {
        take(*owner, name, unitOf(*owner));
      }
    }
  }

  void examine(const Process& process) {
    const auto unit = unitOf(process.identifier);
    const std::string ofUnit = unit ? identifierOfUnit(*unit) : std::string();
    if (!ofUnit.empty() && !isTaken(ofUnit, unit)) return take(process.identifier, ofUnit, unit);
    if (isOfAnotherSession(process.identifier)) return;
    if (const auto launched = identifierFromLauncher(process.identifier); !launched.empty()) {
      if (!isTaken(launched, unit)) take(process.identifier, launched, unit);
      return;
    }
    const std::string ofProgram = programs_.identifierOf(table_, process);
    const bool isHelper = isTaken(ofProgram, unit) || hasAncestor(process, ofProgram);
    if (!ofProgram.empty() && !isHelper) take(process.identifier, ofProgram, unit);
  }

  [[nodiscard]] bool isOfAnotherSession(std::int32_t process) const {
    const auto address = table_.startVariable(process, "DBUS_SESSION_BUS_ADDRESS");
    return address && !busAddress_.empty() && withoutDetails(*address) != busAddress_;
  }

  void take(std::int32_t process, const std::string& identifier,
            const std::optional<std::string>& unit) {
    found_[process] = identifier;
    if (unit) taken_.emplace(*unit, identifier);
  }

  // One unit holds one application and its helpers.
  [[nodiscard]] bool isTaken(const std::string& identifier,
                             const std::optional<std::string>& unit) const {
    return unit && taken_.contains({*unit, identifier});
  }

  [[nodiscard]] bool hasAncestor(const Process& process, const std::string& identifier) const {
    auto parent = parents_.find(process.parent);
    // Processes change while the table is read: what looks like a circle must not hold us up.
    for (std::size_t steps = 0; parent != parents_.end() && steps < parents_.size(); ++steps) {
      const auto application = found_.find(parent->first);
      if (application != found_.end() && application->second == identifier) return true;
      parent = parents_.find(parent->second);
    }
    return false;
  }

  [[nodiscard]] std::optional<std::string> unitOf(std::int32_t process) const {
    return applicationUnitPath(table_.controlGroup(process));
  }

  [[nodiscard]] std::string identifierOfUnit(const std::string& unitPath) const {
    const auto candidates = identifiersOfUnit(text::lastPathComponent(unitPath));
    const auto installed = std::ranges::find_if(
        candidates, [this](const std::string& name) { return identifiers_.contains(name); });
    if (installed != candidates.end()) return *installed;
    return candidates.empty() ? std::string() : candidates.front();
  }

  // The variables are inherited: only for the process that they name do they mean something.
  [[nodiscard]] std::string identifierFromLauncher(std::int32_t process) const {
    const auto file = table_.startVariable(process, "GIO_LAUNCHED_DESKTOP_FILE");
    if (!file || !file->ends_with(".desktop")) return {};
    if (table_.startVariable(process, "GIO_LAUNCHED_DESKTOP_FILE_PID") != std::to_string(process))
      return {};
    const auto entry = std::ranges::find(entries_, *file, &DesktopEntry::path);
    if (entry != entries_.end()) return entry->identifier;
    return text::deletingPathExtension(text::lastPathComponent(*file));
  }

  [[nodiscard]] std::vector<RunningApplicationEntry> inLaunchOrder() const {
    std::vector<RunningApplicationEntry> applications;
    for (const Process& process : processes_) {
      const auto found = found_.find(process.identifier);
      if (found != found_.end())
        applications.push_back({found->second, process.identifier, table_.launchDate(process)});
    }
    for (const std::string& name : unseen_) applications.push_back({name, 0, Date{}});
    return applications;
  }

  const ProcessTable& table_;
  ApplicationBus& bus_;
  std::string busAddress_;
  std::vector<DesktopEntry> entries_;
  ProgramIndex programs_;
  std::vector<Process> processes_;
  std::unordered_set<std::string> identifiers_;
  std::map<std::int32_t, std::int32_t> parents_;
  std::map<std::int32_t, std::string> found_;
  std::set<std::pair<std::string, std::string>> taken_;
  std::vector<std::string> unseen_;
};

}  // namespace

std::vector<RunningApplicationEntry> findRunningApplications(const InstalledApplications& installed,
                                                             const ProcessTable& table,
                                                             ApplicationBus& bus,
                                                             std::string_view busAddress) {
  return Search(installed, table, bus, busAddress).run();
}

}  // namespace vornix::desktop
