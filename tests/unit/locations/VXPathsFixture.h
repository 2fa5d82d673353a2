#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "locations/VXPaths.h"
#include "platform/system/NSBundle.h"
#include "tests/fakes/FakeFileTree.h"
#include "tests/fakes/FakeResourceFiles.h"

namespace vornix {

// A catalogue on a machine of its own, of a program with the identifier "com.example.program".
struct VXPathsMachine {
  fakes::FakeFileMachine machine;
  fakes::FakeResourceFiles resources;
  NSBundle bundle{"/opt/bundle", {"en"}, Dictionary{{"CFBundleIdentifier", "com.example.program"}}};
  VXPaths paths{machine.files, bundle, resources};
};

}  // namespace vornix
