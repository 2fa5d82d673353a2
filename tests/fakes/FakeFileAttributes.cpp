#include "tests/fakes/FakeFileAttributes.h"

namespace vornix::fakes {

int FakeFileAttributes::details(std::string_view path, FileDetails& details) const {
  std::string resolved;
  if (const int error = tree_.locate(path, true, resolved)) return error;
  const auto found = details_.find(resolved);
  details = found == details_.end() ? FileDetails() : found->second;
  return 0;
}

int FakeFileAttributes::extendedAttributeNames(std::string_view path, std::string& names) const {
  std::string resolved;
  if (const int error = tree_.locate(path, false, resolved)) return error;
  const auto found = names_.find(resolved);
  names = found == names_.end() ? std::string() : found->second;
  return 0;
}

std::optional<Dictionary> FakeMetadataIndex::itemAtPath(std::string_view path) const {
  const auto found = items_.find(path);
  return found == items_.end() ? std::nullopt : std::optional(found->second);
}

}  // namespace vornix::fakes
