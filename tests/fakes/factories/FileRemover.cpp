#include "tests/fakes/FakeFileRemover.h"

namespace vornix {

fakes::FakeFileRemover& fakes::fileRemover() {
  static auto& remover = *new FakeFileRemover(fileTree());
  return remover;
}

FileRemover& sharedFileRemover() {
  return fakes::fileRemover();
}

}  // namespace vornix
