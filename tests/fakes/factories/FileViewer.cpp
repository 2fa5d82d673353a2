#include "tests/fakes/FakeFileViewer.h"

namespace vornix {

fakes::FakeFileViewer& fakes::fileViewer() {
  static auto& viewer = *new FakeFileViewer;
  return viewer;
}

FileViewer& sharedFileViewer() {
  return fakes::fileViewer();
}

}  // namespace vornix
