#include "platform/linux/desktop/applications/InstalledApplications.h"

#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <functional>
#include <unordered_set>

#include "platform/base/Diagnostics.h"
#include "platform/base/PathText.h"
#include "platform/base/Text.h"
#include "platform/linux/system/FolderHandle.h"

namespace vornix::desktop {
namespace {

constexpr std::string_view kSuffix = ".desktop";
// Folders that link to each other would otherwise be walked for ever.
constexpr int kDeepestFolder = 8;
constexpr int kMostFolders = 1000;

using FileHandler = std::function<void(const std::string& relativePath)>;

bool isFolder(const std::string& path, const dirent& item) {
  if (item.d_type == DT_DIR) return true;
  if (item.d_type != DT_LNK && item.d_type != DT_UNKNOWN) return false;
  struct stat status {};
  return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

// Names the files below one application folder, in the order of their names.
class FolderWalk {
 public:
  FolderWalk(const std::string& root, const FileHandler& handle) : root_(root), handle_(handle) {}

  void walk(const std::string& relative, int depth) {
    if (depth > kDeepestFolder || ++folders_ > kMostFolders) return;
    std::vector<std::string> subfolders;
    for (const std::string& name : names(relative, subfolders)) handle_(relative + name);
    for (const std::string& name : subfolders) walk(relative + name + "/", depth + 1);
  }

 private:
  std::vector<std::string> names(const std::string& relative,
                                 std::vector<std::string>& subfolders) const {
    std::vector<std::string> names;
    const std::string path = root_ + "/" + relative;
    const FolderHandle folder = openFolder(path);
    while (const dirent* item = folder ? readdir(folder.get()) : nullptr) {
      const std::string name = &item->d_name[0];
      if (name == "." || name == "..") continue;
      if (name.ends_with(kSuffix)) {
        names.push_back(name);
      } else if (isFolder(path + name, *item)) {
        subfolders.push_back(name);
      }
    }
    std::ranges::sort(names);
    std::ranges::sort(subfolders);
    return names;
  }

  const std::string& root_;
  const FileHandler& handle_;
  int folders_ = 0;
};

std::string identifierOf(std::string_view relativePath) {
  relativePath.remove_suffix(kSuffix.size());
  return text::replaceAll(relativePath, "/", "-");
}

bool isExecutableFile(const std::string& path) {
  struct stat status {};
  return stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) &&
         access(path.c_str(), X_OK) == 0;
}

}  // namespace

std::optional<std::string> ProgramSearch::find(std::string_view name) const {
  if (name.empty()) return std::nullopt;
  if (name.find('/') != std::string_view::npos) {
    std::string path(name);
    return isExecutableFile(path) ? std::optional(path) : std::nullopt;
  }
  for (const std::string& folder : folders_) {
    std::string path = text::appendingPathComponent(folder, name);
    if (isExecutableFile(path)) return path;
  }
  return std::nullopt;
}

InstalledApplications::InstalledApplications(std::vector<std::string> folders,
                                             ProgramSearch programs, std::string locale)
    : folders_(std::move(folders)), programs_(std::move(programs)), locale_(std::move(locale)) {}

std::vector<InstalledApplications::File> InstalledApplications::files() const {
  std::vector<File> files;
  std::unordered_set<std::string> seen;
  for (const std::string& folder : folders_) {
    const FileHandler handle = [&](const std::string& relative) {
      std::string identifier = identifierOf(relative);
      if (!identifier.empty() && seen.insert(identifier).second)
        files.push_back({std::move(identifier), text::appendingPathComponent(folder, relative)});
    };
    FolderWalk(folder, handle).walk("", 0);
  }
  return files;
}

std::optional<DesktopEntry> InstalledApplications::read(const File& file,
                                                        std::string& problem) const {
  auto entry = readDesktopEntry(file.identifier, file.path, locale_, problem);
  if (!entry || entry->isHidden) return std::nullopt;
  if (!entry->tryExec.empty() && !programs_.find(entry->tryExec)) {
    problem = file.path + ": the program \"" + entry->tryExec + "\" is missing";
    return std::nullopt;
  }
  return entry;
}

std::vector<DesktopEntry> InstalledApplications::entries() const {
  std::vector<DesktopEntry> entries;
  for (const File& file : files()) {
    std::string problem;
    if (auto entry = read(file, problem)) entries.push_back(*std::move(entry));
  }
  return entries;
}

std::optional<DesktopEntry> InstalledApplications::find(std::string_view identifier) const {
  const std::vector<File> all = files();
  auto found = std::ranges::find(all, identifier, &File::identifier);
  if (found == all.end()) {
    found = std::ranges::find_if(all, [identifier](const File& file) {
      return text::asciiEqualIgnoringCase(file.identifier, identifier);
    });
  }
  if (found == all.end()) return std::nullopt;
  std::string problem;
  auto entry = read(*found, problem);
  if (!problem.empty()) reportDiagnostic(problem);
  return entry;
}

std::optional<DesktopEntry> InstalledApplications::atPath(std::string_view path,
                                                          std::string& problem) const {
  for (const std::string& folder : folders_) {
    const std::string start = folder + "/";
    if (path.starts_with(start) && path.ends_with(kSuffix))
      return read({identifierOf(path.substr(start.size())), std::string(path)}, problem);
  }
  const std::string name = text::lastPathComponent(path);
  return read({text::deletingPathExtension(name), std::string(path)}, problem);
}

}  // namespace vornix::desktop
