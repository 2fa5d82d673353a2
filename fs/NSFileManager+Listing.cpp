#include <algorithm>
#include <iterator>
#include <utility>

#include "foundation/NSString+Regex.h"
#include "fs/NSFileManager+Additions.h"
#include "platform/base/Format.h"
#include "platform/base/PathText.h"

namespace vornix {
namespace {

std::vector<std::string> namesIn(const NSFileManager& files, std::string_view path) {
  return files.contentsOfDirectoryAtPath(path).value_or(std::vector<std::string>());
}

// The folder that holds an item, and the item's name in two parts.
struct DividedPath {
  std::string folder;
  std::string baseName;
  // With its dot; empty where there is none.
  std::string ending;

  explicit DividedPath(std::string_view path)
      : folder(text::deletingLastPathComponent(path)),
        baseName(text::deletingPathExtension(text::lastPathComponent(path))),
        ending(text::pathExtension(path)) {
    if (!ending.empty()) ending.insert(0, ".");
  }

  [[nodiscard]] std::string numbered(std::int32_t number) const {
    const std::string name = text::format("%@ %i", baseName, number);
    return text::appendingPathComponent(folder, name + ending);
  }
};

}  // namespace

std::vector<std::string> directoryContentsWithFullPathesAtPath(const NSFileManager& self,
                                                               std::string_view path) {
  std::vector<std::string> paths = namesIn(self, path);
  for (std::string& each : paths) each = text::appendingPathComponent(path, each);
  return paths;
}

std::vector<NSURL> contentsOfDirectoryAtURL(const NSFileManager& /*self*/, const NSURL& url,
                                            std::uint64_t atLevel) {
  const NSFileManager& files = NSFileManager::defaultManager();
  std::vector<NSURL> all;
  auto items = files.enumeratorAtURL(url, NSDirectoryEnumerationSkipsHiddenFiles);
  while (const auto item = items.nextURL()) {
    if (items.level() != atLevel) continue;
    auto found = files.contentsOfDirectoryAtURL(*item).value_or(std::vector<NSURL>());
    std::ranges::move(found, std::back_inserter(all));
    items.skipDescendants();
  }
  return all;
}

std::set<std::string> getContentOfPath(const NSFileManager& /*self*/, std::string_view path,
                                       bool secondLevel) {
  const NSFileManager& files = NSFileManager::defaultManager();
  std::set<std::string> content;
  for (const std::string& name : namesIn(files, path)) {
    content.insert(name);
    if (!secondLevel) continue;
    for (const std::string& inner : namesIn(files, text::appendingPathComponent(path, name)))
      content.insert(text::appendingPathComponent(name, inner));
  }
  return content;
}

bool fileExistsAtPath(const NSFileManager& self, std::optional<std::string_view> path,
                      const NSRegularExpression* withRegularExpression, std::uint64_t level) {
  if (!path || withRegularExpression == nullptr) return false;
  auto items = self.enumeratorAtPath(*path);
  while (const auto item = items.nextObject()) {
    const std::string whole = text::appendingPathComponent(*path, *item);
    if (isMatchedByRegex(whole, *withRegularExpression)) return true;
    if (items.level() > level) items.skipDescendents();
  }
  return false;
}

std::string uniquePathForPath(const NSFileManager& /*self*/, std::string_view path) {
  const NSFileManager& files = NSFileManager::defaultManager();
  if (!files.fileExistsAtPath(path)) return std::string(path);
  const DividedPath divided(path);
  std::int32_t number = 1;
  std::string candidate = divided.numbered(number);
  while (files.fileExistsAtPath(candidate)) candidate = divided.numbered(++number);
  return candidate;
}

bool containsAnyFileAtPath(const NSFileManager& self, std::string_view path, bool ignoreSymLinks) {
  // A folder counts whatever it holds, so nothing below one has to be looked at.
  auto items = self.enumeratorAtPath(path);
  while (const auto item = items.nextObject()) {
    const auto status = self.attributesOfItemAtPath(text::appendingPathComponent(path, *item));
    if (!status) continue;
    if (!ignoreSymLinks || status->type != FileType::symbolicLink) return true;
  }
  return false;
}

}  // namespace vornix
