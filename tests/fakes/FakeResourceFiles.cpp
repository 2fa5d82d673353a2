#include "tests/fakes/FakeResourceFiles.h"

#include <set>

namespace vornix::fakes {

std::optional<std::string> FakeResourceFiles::contents(std::string_view path) const {
  const std::lock_guard lock(mutex_);
  ++reads_;
  const auto found = files_.find(path);
  return found == files_.end() ? std::nullopt : std::optional(found->second);
}

std::vector<std::string> FakeResourceFiles::namesInFolder(std::string_view path) const {
  const std::lock_guard lock(mutex_);
  const std::string prefix = std::string(path) + "/";
  std::set<std::string> names;
  for (const auto& [file, bytes] : files_) {
    if (!file.starts_with(prefix)) continue;
    const std::string rest = file.substr(prefix.size());
    names.insert(rest.substr(0, rest.find('/')));
  }
  return {names.begin(), names.end()};
}

std::optional<Value> FakeResourceFiles::parsePropertyList(std::string_view bytes) const {
  const std::lock_guard lock(mutex_);
  const auto found = propertyLists_.find(bytes);
  return found == propertyLists_.end() ? std::nullopt : std::optional(found->second);
}

std::optional<Dictionary> FakeResourceFiles::applicationInfo(std::string_view path) const {
  const std::lock_guard lock(mutex_);
  const auto found = applications_.find(path);
  return found == applications_.end() ? std::nullopt : std::optional(found->second);
}

void FakeResourceFiles::setFile(std::string_view path, std::string_view bytes) {
  const std::lock_guard lock(mutex_);
  files_[std::string(path)] = bytes;
}

void FakeResourceFiles::setPropertyList(std::string_view path, const Value& value) {
  const std::string mark = "bplist:" + std::string(path);
  setFile(path, mark);
  const std::lock_guard lock(mutex_);
  propertyLists_[mark] = value;
}

void FakeResourceFiles::setApplicationInfo(std::string_view path, const Dictionary& info) {
  const std::lock_guard lock(mutex_);
  applications_[std::string(path)] = info;
}

int FakeResourceFiles::reads() const {
  const std::lock_guard lock(mutex_);
  return reads_;
}

}  // namespace vornix::fakes
