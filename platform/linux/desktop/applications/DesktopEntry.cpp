#include "platform/linux/desktop/applications/DesktopEntry.h"

#include <cerrno>

#include "platform/base/NSError.h"
#include "platform/linux/desktop/applications/KeyFile.h"
#include "platform/linux/desktop/applications/SmallFile.h"

namespace vornix::desktop {
namespace {

constexpr std::string_view kGroup = "Desktop Entry";
constexpr std::size_t kLargestEntry = std::size_t{1} << 20U;

DesktopEntry entryOf(const KeyFile& file, std::string_view identifier, const std::string& path,
                     std::string_view locale) {
  return {.identifier = std::string(identifier),
          .path = path,
          .name = file.localizedString(kGroup, "Name", locale).value_or(std::string(identifier)),
          .icon = file.localizedString(kGroup, "Icon", locale).value_or(""),
          .exec = file.string(kGroup, "Exec").value_or(""),
          .tryExec = file.string(kGroup, "TryExec").value_or(""),
          .workingDirectory = file.string(kGroup, "Path").value_or(""),
          .runsInTerminal = file.boolean(kGroup, "Terminal"),
          .isHidden = file.boolean(kGroup, "Hidden")};
}

}  // namespace

std::optional<DesktopEntry> readDesktopEntry(std::string_view identifier, const std::string& path,
                                             std::string_view locale, std::string& problem) {
  const auto contents = readSmallFile(path, kLargestEntry);
  if (!contents) {
    problem = posixError(errno, path).localizedDescription;
    return std::nullopt;
  }
  if (contents->find('\0') != std::string::npos) {
    problem = path + ": not a text file";
    return std::nullopt;
  }
  const KeyFile file = KeyFile::parse(*contents);
  DesktopEntry entry = entryOf(file, identifier, path, locale);
  if (!entry.isHidden && file.string(kGroup, "Type") != "Application") {
    problem = path + ": not the desktop entry of an application";
    return std::nullopt;
  }
  return entry;
}

}  // namespace vornix::desktop
