// Makes a small tree in the temporary folder, walks through it, searches it and removes it so that
// what its files held cannot be read from the disk again. Touches nothing else.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "fs/NSFileManager+Additions.h"
#include "fs/NSFileManager+FileModificationsAdditions.h"
#include "platform/base/PathText.h"
#include "platform/files/NSPathUtilities.h"

namespace {

using namespace vornix;

// A folder that did not exist before.
std::optional<std::string> makeTree(NSFileManager& files) {
  std::string root = uniquePathForPath(
      files, text::appendingPathComponent(NSTemporaryDirectory(), "vornix-clean-tree"));
  if (!files.createDirectoryAtPath(root, false, 0700)) return std::nullopt;
  for (const char* name : {"caches/Old Report.log", "caches/Report Old.txt",
                           "caches/Old Report 2.log", "caches/deeper/unrelated", "notes"}) {
    const std::string path = text::appendingPathComponent(root, name);
    files.createDirectoryAtPath(text::deletingLastPathComponent(path), true);
    std::ofstream(path) << "what " << name << " holds\n";
  }
  return root;
}

void walk(NSFileManager& files, const std::string& root) {
  // The folder that it starts with is not told.
  int folders = 1;
  int others = 0;
  com_orvane_FTSWalkAtPath(files, root, true, [&](std::string_view, bool isFolder, bool&) {
    ++(isFolder ? folders : others);
  });
  std::printf("walked %d folders and %d files\n", folders, others);
}

void search(NSFileManager& files, const std::string& root) {
  // In whatever order the words stand, and without numbered copies.
  const std::string caches = text::appendingPathComponent(root, "caches");
  std::vector<std::string> found = findFile(files, "Old Report", caches, true, false);
  std::ranges::sort(found);
  for (const std::string& path : found)
    std::printf("found caches/%s\n", text::lastPathComponent(path).c_str());
}

bool removeSecurely(NSFileManager& files, const std::string& root) {
  std::optional<NSError> error;
  if (!securelyRemoveFileAtPath(files, root, &error)) {
    std::fprintf(stderr, "%s: %s\n", root.c_str(), error->localizedDescription.c_str());
    return false;
  }
  std::printf("removed %s, and left %s\n", root.c_str(),
              files.fileExistsAtPath(root) ? "something" : "nothing");
  return true;
}

}  // namespace

int main() {
  NSFileManager& files = NSFileManager::defaultManager();
  const auto root = makeTree(files);
  if (!root) {
    std::fputs("no folder could be made in the temporary folder\n", stderr);
    return EXIT_FAILURE;
  }
  walk(files, *root);
  search(files, *root);
  return removeSecurely(files, *root) ? EXIT_SUCCESS : EXIT_FAILURE;
}
