#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <string_view>

#include "fs/NSFileManager+FileModificationsAdditions.h"
#include "tests/fakes/FakeFileHandle.h"
#include "tests/fakes/FakeFileTree.h"
#include "tests/fakes/ScopedSharedLogger.h"

namespace vornix {

// What a caller's error variable holds before a call.
inline const NSError kUntouchedError{.domain = "untouched"};

// A machine in memory, and the shared logger's messages.
class FileModifications : public testing::Test {
 protected:
  [[nodiscard]] bool exists(std::string_view path) const {
    return machine_.files.attributesOfItemAtPath(path).has_value();
  }
  void lock(std::string_view path) { EXPECT_EQ(machine_.tree.setImmutable(path, true), 0); }
  // The error's code; 0 where the variable was left as it was.
  [[nodiscard]] std::int64_t code() const {
    return error_ == kUntouchedError ? 0 : error_.value_or(NSError{.code = -1}).code;
  }
  [[nodiscard]] static std::string named(std::string_view method) {
    return "-[NSFileManager(FileModificationsAdditions) " + std::string(method) + "]";
  }

  fakes::FakeFileMachine machine_;
  fakes::ScopedSharedLogger logger_;
  std::optional<NSError> error_ = kUntouchedError;
};

}  // namespace vornix
