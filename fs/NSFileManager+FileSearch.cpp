#include <algorithm>

#include "foundation/NSString+NSStringAdditions.h"
#include "fs/FileNameSearch.h"
#include "fs/NSFileManager+FileModificationsAdditions.h"
#include "platform/base/PathText.h"
#include "platform/text/CaseMapping.h"

namespace vornix {
namespace {

class FolderSearch {
 public:
  FolderSearch(const NSFileManager& files, std::string_view folder, FileNameSearch names)
      : files_(files), folder_(folder), names_(std::move(names)) {}

  // As if the item lay in the searched folder.
  [[nodiscard]] std::string pathOf(std::string_view name) const {
    return text::appendingPathComponent(folder_, name);
  }

  [[nodiscard]] bool matches(std::string_view name) const {
    // The searched folder itself, where its path ends in a slash.
    if (name.empty()) return names_.matches(name, candidateOf(name));
    switch (names_.matches(name)) {
      case FileNameSearch::Answer::no:
        return false;
      case FileNameSearch::Answer::yes:
        return true;
      case FileNameSearch::Answer::dependsOnCandidate:
        break;
    }
    return names_.matches(name, candidateOf(name));
  }

 private:
  [[nodiscard]] std::string candidateOf(std::string_view name) const {
    const std::string path = stringByDeletingRealPathExtension(pathOf(name), files_);
    return text::lastPathComponent(text::lowercase(path));
  }

  const NSFileManager& files_;
  std::string_view folder_;
  FileNameSearch names_;
};

bool isLeftOut(std::string_view name, const std::vector<std::string>& names) {
  return !names.empty() && std::ranges::find(names, name) != names.end();
}

}  // namespace

std::vector<std::string> findFile(const NSFileManager& self, std::string_view name,
                                  std::string_view atPath, bool matchByWords, bool recursive,
                                  const std::vector<std::string>& filterWith) {
  std::vector<std::string> found;
  if (name.empty() || atPath.empty() || atPath == "/" || atPath == ".") return found;
  const FolderSearch search(self, atPath, FileNameSearch(name, matchByWords));
  const std::string ownName = text::lastPathComponent(atPath);
  const auto hierarchy = self.hierarchyAtPath(atPath, {.noStatus = true});
  while (const HierarchyEntry* entry = hierarchy ? hierarchy->read() : nullptr) {
    if (entry->name == ownName) continue;
    const bool leavesOut = isLeftOut(entry->name, filterWith);
    if (leavesOut || !recursive) hierarchy->skip();
    if (!leavesOut && search.matches(entry->name)) found.push_back(search.pathOf(entry->name));
  }
  return found;
}

}  // namespace vornix
