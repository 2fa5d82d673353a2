#include "tests/fakes/FakeFileTree.h"

namespace vornix {

fakes::FakeFileTree& fakes::fileTree() {
  static auto& tree = *new FakeFileTree;
  return tree;
}

FileSystem& sharedFileSystem() {
  static auto& fileSystem = *new fakes::FakeFileSystem(fakes::fileTree());
  return fileSystem;
}

fakes::FakeTrash& fakes::processTrash() {
  static auto& trash = *new FakeTrash(fileTree());
  return trash;
}

Trash& sharedTrash() {
  return fakes::processTrash();
}

const Volumes& sharedVolumes() {
  static const auto& volumes = *new fakes::FakeVolumes(fakes::fileTree());
  return volumes;
}

}  // namespace vornix
