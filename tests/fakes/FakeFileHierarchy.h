#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "platform/files/FileHierarchy.h"
#include "tests/fakes/FakeFileTree.h"

namespace vornix::fakes {

// A walk through a tree in memory. What is bound somewhere is a copy there, so no folder ever leads
// to itself.
class FakeFileHierarchy final : public FileHierarchy {
 public:
  FakeFileHierarchy(const FakeFileTree& tree, std::string_view path, HierarchyOptions options)
      : tree_(tree), options_(options), root_(path) {}

  [[nodiscard]] const HierarchyEntry* read() override;
  void skip() override { isSkipped_ = true; }
  void close() override;

 private:
  struct Folder {
    // In the tree, and in the walk.
    std::string resolved{};
    std::string path{};
    std::string name{};
    std::vector<std::string> names{};
    std::size_t next = 0;
  };

  const HierarchyEntry* readRoot();
  const HierarchyEntry* readInside();
  const HierarchyEntry* readItem();
  const HierarchyEntry* tell(const Folder& item, HierarchyKind kind, std::size_t level,
                             int error = 0);
  [[nodiscard]] HierarchyKind kindOf(const std::string& resolved) const;

  const FakeFileTree& tree_;
  HierarchyOptions options_;
  std::string root_;
  std::string rootDevice_{};
  bool isStarted_ = false;
  bool isSkipped_ = false;
  std::vector<Folder> folders_{};
  // The last entry's.
  Folder item_{};
  HierarchyEntry entry_{};
};

}  // namespace vornix::fakes
