#include "tests/fakes/FakeFileTree.h"

#include <cerrno>
#include <deque>
#include <vector>

#include "platform/base/PathText.h"
#include "platform/base/Text.h"
#include "tests/fakes/FakeFileHierarchy.h"

namespace vornix::fakes {
namespace {

constexpr int kMostLinks = 40;
constexpr std::size_t kLongestName = 255;
constexpr std::size_t kLongestPath = 4095;

std::string parentOf(const std::string& resolved) {
  return resolved.substr(0, resolved.rfind('/'));
}

void putInFront(std::deque<std::string>& steps, const std::string& path) {
  const auto first = text::split(path, "/");
  steps.insert(steps.begin(), first.begin(), first.end());
}

// Found by its path again: nobody else moves anything in the tree.
class FakeHeldFolder final : public HeldFolder {
 public:
  FakeHeldFolder(std::string_view path, FakeFileTree& tree, std::mutex& mutex)
      : HeldFolder(path), tree_(tree), mutex_(mutex) {}

  [[nodiscard]] int list(std::string& names) const override {
    const std::lock_guard lock(mutex_);
    std::string resolved;
    std::vector<std::string> found;
    if (const int error = tree_.locate(path(), true, resolved)) return error;
    if (const int error = tree_.list(resolved, found)) return error;
    names.clear();
    for (const std::string& name : found) names.append(name).push_back('\0');
    return 0;
  }
  [[nodiscard]] int remove(const std::string& name) override {
    const std::lock_guard lock(mutex_);
    return tree_.remove(text::appendingPathComponent(path(), name));
  }

 private:
  FakeFileTree& tree_;
  std::mutex& mutex_;
};

}  // namespace

void FakeFileTree::addFolder(const std::string& path) {
  add(path, {});
}

void FakeFileTree::addFile(const std::string& path) {
  add(path, {.type = FileType::regular});
}

void FakeFileTree::addLink(const std::string& path, const std::string& target) {
  add(path, {.type = FileType::symbolicLink, .target = target});
}

void FakeFileTree::mountAt(const std::string& path) {
  mounts_[path] = path;
}

void FakeFileTree::bind(const std::string& source, const std::string& path) {
  std::vector<std::pair<std::string, Item>> copies;
  for (const auto& [name, item] : items_) {
    if (name == source || name.starts_with(source + "/"))
      copies.emplace_back(path + name.substr(source.size()), item);
  }
  std::erase_if(items_, [&](const auto& each) { return each.first.starts_with(path + "/"); });
  for (const auto& [name, item] : copies) items_[name] = item;
  mounts_[path] = deviceOf(source);
}

void FakeFileTree::clear() {
  *this = FakeFileTree();
}

void FakeFileTree::refuseChangesIn(const std::string& path, int error) {
  refusals_[path] = error;
}

void FakeFileTree::refuseReading(const std::string& path, int error) {
  readingRefusals_[path] = error;
}

void FakeFileTree::disown(const std::string& path) {
  items_[path].isOwn = false;
}

std::optional<std::string> FakeFileTree::resolve(std::string_view path, bool followsItem) const {
  std::string resolved;
  return locate(path, followsItem, resolved) == 0 ? std::optional(resolved) : std::nullopt;
}

int FakeFileTree::locate(std::string_view path, bool followsItem, std::string& resolved) const {
  if (path.empty() || path.find('\0') != std::string_view::npos) return ENOENT;
  if (path.size() > kLongestPath) return ENAMETOOLONG;
  if (!path.starts_with('/') && currentFolder.empty()) return ENOENT;
  std::deque<std::string> steps;
  putInFront(steps, std::string(path));
  if (!path.starts_with('/')) putInFront(steps, currentFolder);
  std::string at;
  for (int links = 0; !steps.empty();) {
    if (!isFolder(at)) return ENOTDIR;
    const std::string step = steps.front();
    steps.pop_front();
    if (step.size() > kLongestName) return ENAMETOOLONG;
    if (step.empty() || step == ".") continue;
    if (step == "..") {
      if (!at.empty()) at = parentOf(at);
      continue;
    }
    const auto found = items_.find(at + "/" + step);
    if (found == items_.end()) return ENOENT;
    const Item& item = found->second;
    if (item.type != FileType::symbolicLink || (steps.empty() && !followsItem)) {
      at = found->first;
      continue;
    }
    if (++links > kMostLinks) return ELOOP;
    if (item.target.starts_with('/')) at.clear();
    putInFront(steps, item.target);
  }
  resolved = at;
  return 0;
}

FakeFileTree::Item FakeFileTree::itemAt(const std::string& resolved) const {
  const auto found = items_.find(resolved);
  return found == items_.end() ? Item() : found->second;
}

bool FakeFileTree::isFolder(const std::string& resolved) const {
  const auto found = items_.find(resolved);
  return resolved.empty() || (found != items_.end() && found->second.type == FileType::directory);
}

int FakeFileTree::list(const std::string& resolved, std::vector<std::string>& names) const {
  if (!isFolder(resolved)) return ENOTDIR;
  const auto refused = readingRefusals_.find(resolved);
  if (refused != readingRefusals_.end()) return refused->second;
  const std::string start = resolved + "/";
  for (auto each = items_.lower_bound(start); each != items_.end(); ++each) {
    if (!each->first.starts_with(start)) break;
    std::string name = each->first.substr(start.size());
    if (name.find('/') == std::string::npos) names.push_back(std::move(name));
  }
  return 0;
}

std::string FakeFileTree::deviceOf(const std::string& resolved) const {
  std::string at = resolved;
  while (!isMountPoint(at)) at = parentOf(at);
  return at.empty() ? at : mounts_.at(at);
}

int FakeFileTree::make(std::string_view path, const Item& item) {
  std::string resolved;
  const int error = locate(path, false, resolved);
  if (error == 0) return EEXIST;
  if (error != ENOENT) return error;
  if (item.type == FileType::directory) path = text::withoutTrailingSlashes(path);
  if (const int newError = locateNew(path, resolved)) return newError;
  if (const int refused = refusal(parentOf(resolved))) return refused;
  items_[resolved] = item;
  return 0;
}

int FakeFileTree::locateNew(std::string_view path, std::string& resolved) const {
  const auto slash = path.rfind('/');
  const std::string folder(slash == std::string_view::npos ? "." : path.substr(0, slash + 1));
  const std::string name(path.substr(slash == std::string_view::npos ? 0 : slash + 1));
  std::string parent;
  if (const int error = locate(folder, true, parent)) return error;
  if (name.empty()) return path.empty() ? ENOENT : EISDIR;
  if (path.find('\0') != std::string_view::npos) return ENOENT;
  if (name.size() > kLongestName) return ENAMETOOLONG;
  resolved = parent + "/" + name;
  return 0;
}

int FakeFileTree::locateRemovable(std::string_view path, std::string& resolved) const {
  const std::string_view item = text::withoutTrailingSlashes(path);
  const std::string name = text::lastPathComponent(item);
  if (name == "/") return EBUSY;
  if (name == "." || name == "..") return EINVAL;
  if (const int error = locate(item, false, resolved)) return error;
  const Item found = itemAt(resolved);
  if (item.size() < path.size() && found.type == FileType::regular) return ENOTDIR;
  if (const int refused = refusal(parentOf(resolved))) return refused;
  return found.isImmutable ? EPERM : 0;
}

int FakeFileTree::remove(std::string_view path) {
  std::string resolved;
  if (const int error = locateRemovable(path, resolved)) return error;
  for (const auto& [folder, error] : refusals_) {
    if (folder == resolved || folder.starts_with(resolved + "/")) return error;
  }
  for (const auto& [name, item] : items_) {
    if (item.isImmutable && name.starts_with(resolved + "/")) return EPERM;
  }
  std::erase_if(items_, [&resolved](const auto& each) {
    return each.first == resolved || each.first.starts_with(resolved + "/");
  });
  return 0;
}

int FakeFileTree::move(std::string_view source, std::string_view destination) {
  std::string from;
  std::string to;
  const std::string_view end = text::withoutTrailingSlashes(destination);
  if (locate(end, false, to) == 0) return EEXIST;
  if (const int error = locateRemovable(source, from)) return error;
  if (const int error = locateNew(end, to)) return error;
  if (end.size() < destination.size() && !isFolder(from)) return ENOTDIR;
  if (to.starts_with(from + "/")) return EINVAL;
  if (const int refused = refusal(parentOf(to))) return refused;
  std::map<std::string, Item, std::less<>> moved;
  for (const auto& [name, item] : items_) {
    if (name == from || name.starts_with(from + "/")) moved[to + name.substr(from.size())] = item;
  }
  std::erase_if(items_, [&from](const auto& each) {
    return each.first == from || each.first.starts_with(from + "/");
  });
  items_.merge(moved);
  return 0;
}

int FakeFileTree::setImmutable(std::string_view path, bool isImmutable) {
  std::string resolved;
  if (const int error = locate(path, false, resolved)) return error;
  Item& item = items_[resolved];
  if (item.isImmutable == isImmutable) return 0;
  if (item.type != FileType::regular && item.type != FileType::directory) return EOPNOTSUPP;
  if (!isRoot) return EPERM;
  item.isImmutable = isImmutable;
  return 0;
}

int FakeFileTree::refusal(const std::string& folder) const {
  if (itemAt(folder).isImmutable) return EPERM;
  const auto found = refusals_.find(folder);
  return found == refusals_.end() ? 0 : found->second;
}

bool FakeFileTree::isMountPoint(const std::string& resolved) const {
  return resolved.empty() || mounts_.contains(resolved);
}

void FakeFileTree::add(const std::string& path, const Item& item) {
  for (std::string folder = parentOf(path); !folder.empty(); folder = parentOf(folder))
    items_.try_emplace(folder);
  items_[path] = item;
}

int FakeFileSystem::status(std::string_view path, bool followsLinks, FileStatus& status) const {
  const std::lock_guard lock(mutex_);
  std::string resolved;
  const int error = tree_.locate(path, followsLinks, resolved);
  if (error != 0) return error;
  const auto item = tree_.itemAt(resolved);
  status = {.type = item.type,
            .permissions = item.permissions,
            .isOwn = item.isOwn,
            .isImmutable = item.isImmutable};
  return 0;
}

int FakeFileSystem::readLink(std::string_view path, std::string& target) const {
  const std::lock_guard lock(mutex_);
  std::string resolved;
  const int error = tree_.locate(path, false, resolved);
  if (error != 0) return error;
  const auto item = tree_.itemAt(resolved);
  if (item.type != FileType::symbolicLink) return EINVAL;
  target = item.target;
  return 0;
}

int FakeFileSystem::list(std::string_view path, std::vector<FolderItem>& items) const {
  const std::lock_guard lock(mutex_);
  std::string resolved;
  std::vector<std::string> names;
  if (const int error = tree_.locate(path, true, resolved)) return error;
  if (const int error = tree_.list(resolved, names)) return error;
  items.clear();
  for (const std::string& name : names)
    items.push_back({.name = name, .isFolder = tree_.isFolder(resolved + "/" + name)});
  return 0;
}

int FakeFileSystem::openHierarchy(std::string_view path, HierarchyOptions options,
                                  std::unique_ptr<FileHierarchy>& hierarchy) const {
  if (path.empty()) return ENOENT;
  hierarchy = std::make_unique<FakeFileHierarchy>(tree_, path, options);
  return 0;
}

int FakeFileSystem::makeFolder(std::string_view path, std::uint32_t permissions) {
  const std::lock_guard lock(mutex_);
  return tree_.make(path, {.type = FileType::directory, .permissions = permissions});
}

int FakeFileSystem::makeFile(std::string_view path) {
  const std::lock_guard lock(mutex_);
  return tree_.make(path, {.type = FileType::regular, .permissions = 0644});
}

int FakeFileSystem::holdFolder(std::string_view path, std::unique_ptr<HeldFolder>& folder) const {
  std::vector<FolderItem> items;
  if (const int error = list(path, items)) return error;
  folder = std::make_unique<FakeHeldFolder>(path, tree_, mutex_);
  return 0;
}

int FakeFileSystem::remove(std::string_view path) {
  const std::lock_guard lock(mutex_);
  return tree_.remove(path);
}

int FakeFileSystem::move(std::string_view source, std::string_view destination) {
  const std::lock_guard lock(mutex_);
  return tree_.move(source, destination);
}

int FakeFileSystem::setImmutable(std::string_view path, bool isImmutable) {
  const std::lock_guard lock(mutex_);
  return tree_.setImmutable(path, isImmutable);
}

std::string FakeFileSystem::currentFolder() const {
  const std::lock_guard lock(mutex_);
  return tree_.currentFolder;
}

int FakeTrash::moveToTrash(std::string_view path) {
  const std::lock_guard lock(mutex_);
  std::string resolved;
  if (const int error = tree_.locate(path, false, resolved)) return error;
  for (const std::string& folder : omitted_) {
    if (folder == "/" || resolved.starts_with(folder + "/")) return EOPNOTSUPP;
  }
  (void)tree_.make("/Trash", {.type = FileType::directory});
  const std::string place = "/Trash/" + text::lastPathComponent(path);
  int error = tree_.move(path, place);
  for (int number = 2; error == EEXIST; ++number)
    error = tree_.move(path, place + "." + std::to_string(number));
  return error;
}

std::optional<std::string> FakeVolumes::volumePathOf(std::string_view path) const {
  auto at = tree_.resolve(path, false);
  if (!at) return std::nullopt;
  while (!tree_.isMountPoint(*at)) *at = parentOf(*at);
  return at->empty() ? "/" : *at;
}

}  // namespace vornix::fakes
