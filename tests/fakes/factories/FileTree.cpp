#include "tests/fakes/FakeFileTree.h"

namespace vornix {

fakes::FakeFileTree& fakes::fileTree() {
  static auto& tree = *new FakeFileTree;
  return tree;
}

NSFileManager& NSFileManager::defaultManager() {
  static auto& manager = *new fakes::FakeFileManager(fakes::fileTree());
  return manager;
}

const Volumes& sharedVolumes() {
  static const auto& volumes = *new fakes::FakeVolumes(fakes::fileTree());
  return volumes;
}

}  // namespace vornix
