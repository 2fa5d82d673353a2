#pragma once

#include <gtest/gtest.h>
#include <sys/types.h>
#include <sys/wait.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/base/Diagnostics.h"
#include "platform/linux/preferences/LinuxPreferencesStore.h"
#include "tests/support/ScratchFolder.h"

namespace vornix::contract {

inline constexpr std::string_view kDomain = "com.example.domain";
inline constexpr std::string_view kFile = "Library/Preferences/com.example.domain.plist";

inline std::string bytesOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

inline int statusOf(pid_t child) {
  int status = -1;
  EXPECT_EQ(waitpid(child, &status, 0), child);
  return status;
}

// A store in a scratch folder that loses patience soon, and what it had to say.
class LinuxPreferencesFixture : public testing::Test {
 protected:
  LinuxPreferencesFixture() {
    setDiagnosticReceiver([this](std::string_view line) { lines_.emplace_back(line); });
  }
  ~LinuxPreferencesFixture() override { setDiagnosticReceiver({}); }

  [[nodiscard]] std::string path() const { return folder_.path(kFile); }
  std::optional<Value> copy(std::string_view key) {
    return store_.copyValue(key, kDomain, PreferencesUser::Current);
  }
  // As another program reads it.
  std::optional<Value> copyAfresh(std::string_view key) {
    return LinuxPreferencesStore(folder_.path()).copyValue(key, kDomain, PreferencesUser::Current);
  }
  std::optional<NSError> set(std::string_view key, const std::optional<Value>& value) {
    return store_.setValue(key, value, kDomain);
  }
  [[nodiscard]] std::vector<std::string> namesBeside() const {
    std::vector<std::string> names;
    for (const auto& entry :
         std::filesystem::directory_iterator(folder_.path("Library/Preferences"))) {
      names.push_back(entry.path().filename());
    }
    std::ranges::sort(names);
    return names;
  }

  tests::ScratchFolder folder_;
  LinuxPreferencesStore store_{
      folder_.path(),
      folder_.path("any"),
      {.lockPatience = std::chrono::milliseconds(30), .largestFile = 4096}};
  std::vector<std::string> lines_;
};

}  // namespace vornix::contract
