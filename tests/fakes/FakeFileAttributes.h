#pragma once

#include <map>
#include <string>
#include <vector>

#include "platform/files/FileAttributes.h"
#include "platform/files/MetadataIndex.h"
#include "tests/fakes/FakeFileTree.h"

namespace vornix::fakes {

// Of the items of a tree. What was not set is 0, and no item has extended attributes by itself.
// Set before threads read it.
class FakeFileAttributes final : public FileAttributes {
 public:
  explicit FakeFileAttributes(const FakeFileTree& tree) : tree_(tree) {}

  [[nodiscard]] int details(std::string_view path, FileDetails& details) const override;
  [[nodiscard]] int extendedAttributeNames(std::string_view path,
                                           std::string& names) const override;

  // Absolute paths without links.
  void setDetails(const std::string& path, const FileDetails& details) { details_[path] = details; }
  void addExtendedAttribute(const std::string& path, const std::string& name) {
    names_[path] += name + '\0';
  }

 private:
  const FakeFileTree& tree_;
  std::map<std::string, FileDetails> details_;
  std::map<std::string, std::string> names_;
};

// Set before threads read it.
class FakeMetadataIndex final : public MetadataIndex {
 public:
  [[nodiscard]] std::optional<Dictionary> itemAtPath(std::string_view path) const override;
  void setItem(const std::string& path, const Dictionary& item) { items_[path] = item; }

 private:
  std::map<std::string, Dictionary, std::less<>> items_;
};

// Those that the process's own file tree has on the fake platform.
FakeFileAttributes& fileAttributes();
FakeMetadataIndex& metadataIndex();

}  // namespace vornix::fakes
