#pragma once

#include <string>
#include <utility>
#include <vector>

#include "platform/files/FileRemover.h"
#include "tests/fakes/FakeFileTree.h"

namespace vornix::fakes {

// Removes from a tree, and records what it was asked. Of one thread.
class FakeFileRemover final : public FileRemover {
 public:
  explicit FakeFileRemover(FakeFileTree& tree) : tree_(tree) {}

  [[nodiscard]] RemovefileResult removefile(std::string_view path, std::uint32_t flags) override;

  // From now on every removal answers this, and removes nothing; {0, 0} ends it.
  void answer(RemovefileResult result) { answer_ = result; }
  [[nodiscard]] const std::vector<std::pair<std::string, std::uint32_t>>& requests() const {
    return requests_;
  }

 private:
  [[nodiscard]] int remove(std::string_view path, bool isRecursive);

  FakeFileTree& tree_;
  RemovefileResult answer_;
  std::vector<std::pair<std::string, std::uint32_t>> requests_;
};

// The one of the process's own file tree on the fake platform.
FakeFileRemover& fileRemover();

}  // namespace vornix::fakes
