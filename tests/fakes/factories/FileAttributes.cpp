#include "tests/fakes/FakeFileAttributes.h"

namespace vornix {

fakes::FakeFileAttributes& fakes::fileAttributes() {
  static auto& attributes = *new FakeFileAttributes(fileTree());
  return attributes;
}

fakes::FakeMetadataIndex& fakes::metadataIndex() {
  static auto& index = *new FakeMetadataIndex;
  return index;
}

const FileAttributes& sharedFileAttributes() {
  return fakes::fileAttributes();
}

const MetadataIndex& sharedMetadataIndex() {
  return fakes::metadataIndex();
}

}  // namespace vornix
