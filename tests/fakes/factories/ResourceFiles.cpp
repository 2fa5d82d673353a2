#include "tests/fakes/FakeResourceFiles.h"

namespace vornix {

fakes::FakeResourceFiles& fakes::resourceFiles() {
  static auto& files = [&]() -> FakeResourceFiles& {
    auto& made = *new FakeResourceFiles;
    made.setPropertyList("/opt/vornix/share/program/Info.plist",
                         Dictionary{{"CFBundleIdentifier", "com.example.program"}});
    return made;
  }();
  return files;
}

const ResourceFiles& sharedResourceFiles() {
  return fakes::resourceFiles();
}

}  // namespace vornix
