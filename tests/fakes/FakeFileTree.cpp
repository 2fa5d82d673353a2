#include "tests/fakes/FakeFileTree.h"

#include <deque>
#include <vector>

#include "platform/base/Text.h"

namespace vornix::fakes {
namespace {

constexpr int kMostLinks = 40;

std::string parentOf(const std::string& resolved) {
  return resolved.substr(0, resolved.rfind('/'));
}

void putInFront(std::deque<std::string>& steps, const std::string& path) {
  const auto first = text::split(path, "/");
  steps.insert(steps.begin(), first.begin(), first.end());
}

}  // namespace

void FakeFileTree::addFolder(const std::string& path) {
  add(path, {});
}

void FakeFileTree::addFile(const std::string& path) {
  add(path, {.kind = Kind::file, .target = {}});
}

void FakeFileTree::addLink(const std::string& path, const std::string& target) {
  add(path, {.kind = Kind::link, .target = target});
}

void FakeFileTree::mountAt(const std::string& path) {
  mounts_.insert(path);
}

void FakeFileTree::bind(const std::string& source, const std::string& path) {
  std::vector<std::pair<std::string, Item>> copies;
  for (const auto& [name, item] : items_) {
    if (name == source || name.starts_with(source + "/"))
      copies.emplace_back(path + name.substr(source.size()), item);
  }
  std::erase_if(items_, [&](const auto& each) { return each.first.starts_with(path + "/"); });
  for (const auto& [name, item] : copies) items_[name] = item;
  mountAt(path);
}

void FakeFileTree::clear() {
  *this = FakeFileTree();
}

std::optional<std::string> FakeFileTree::resolve(std::string_view path, bool followsItem) const {
  if (path.empty() || path.find('\0') != std::string_view::npos) return std::nullopt;
  std::deque<std::string> steps;
  putInFront(steps, std::string(path));
  if (!path.starts_with('/')) putInFront(steps, currentFolder);
  std::string at;
  for (int links = 0; !steps.empty();) {
    if (!isFolder(at)) return std::nullopt;
    const std::string step = steps.front();
    steps.pop_front();
    if (step.empty() || step == ".") continue;
    if (step == "..") {
      if (!at.empty()) at = parentOf(at);
      continue;
    }
    const auto found = items_.find(at + "/" + step);
    if (found == items_.end()) return std::nullopt;
    const Item& item = found->second;
    if (item.kind != Kind::link || (steps.empty() && !followsItem)) {
      at = found->first;
      continue;
    }
    if (++links > kMostLinks) return std::nullopt;
    if (item.target.starts_with('/')) at.clear();
    putInFront(steps, item.target);
  }
  return at;
}

bool FakeFileTree::isFolder(const std::string& resolved) const {
  const auto found = items_.find(resolved);
  return resolved.empty() || (found != items_.end() && found->second.kind == Kind::folder);
}

bool FakeFileTree::isMountPoint(const std::string& resolved) const {
  return resolved.empty() || mounts_.contains(resolved);
}

void FakeFileTree::add(const std::string& path, const Item& item) {
  for (std::string folder = parentOf(path); !folder.empty(); folder = parentOf(folder))
    items_.try_emplace(folder);
  items_[path] = item;
}

bool FakeFileManager::fileExistsAtPath(std::string_view path, bool* isDirectory) const {
  const auto resolved = tree_.resolve(path, true);
  if (isDirectory != nullptr) *isDirectory = resolved && tree_.isFolder(*resolved);
  return resolved.has_value();
}

std::optional<std::string> FakeVolumes::volumePathOf(std::string_view path) const {
  auto at = tree_.resolve(path, false);
  if (!at) return std::nullopt;
  while (!tree_.isMountPoint(*at)) *at = parentOf(*at);
  return at->empty() ? "/" : *at;
}

}  // namespace vornix::fakes
