#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/linux/desktop/applications/DesktopEntry.h"

namespace vornix::desktop {

// Programs by name, as a shell finds them.
class ProgramSearch {
 public:
  explicit ProgramSearch(std::vector<std::string> folders) : folders_(std::move(folders)) {}

  // The path of the executable file: `name` itself where it holds a slash, else in the first folder
  // that has it. None when there is none.
  [[nodiscard]] std::optional<std::string> find(std::string_view name) const;

 private:
  std::vector<std::string> folders_;
};

// The desktop entries of the application folders. Where several have the same identifier, the one
// in the folder named first counts.
class InstalledApplications {
 public:
  // `folders`: most important first; those that do not exist count as empty.
  InstalledApplications(std::vector<std::string> folders, ProgramSearch programs,
                        std::string locale);

  // Every usable entry, in search order.
  [[nodiscard]] std::vector<DesktopEntry> entries() const;
  // The entry of this identifier, else of one equal to it ignoring case. An entry that is there but
  // cannot be used is reported as a diagnostic.
  [[nodiscard]] std::optional<DesktopEntry> find(std::string_view identifier) const;
  // The entry in this file, none and the reason in `problem` when it cannot be used.
  [[nodiscard]] std::optional<DesktopEntry> atPath(std::string_view path,
                                                   std::string& problem) const;

  [[nodiscard]] const ProgramSearch& programs() const { return programs_; }

 private:
  struct File {
    std::string identifier;
    std::string path;
  };
  [[nodiscard]] std::vector<File> files() const;
  [[nodiscard]] std::optional<DesktopEntry> read(const File& file, std::string& problem) const;

  std::vector<std::string> folders_;
  ProgramSearch programs_;
  std::string locale_;
};

}  // namespace vornix::desktop
