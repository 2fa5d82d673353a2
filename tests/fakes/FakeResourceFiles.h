#pragma once

#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "platform/system/ResourceFiles.h"

namespace vornix::fakes {

// Files in memory. A property list's bytes are a mark by which `parsePropertyList` finds its value.
class FakeResourceFiles final : public ResourceFiles {
 public:
  [[nodiscard]] std::optional<std::string> contents(std::string_view path) const override;
  [[nodiscard]] std::vector<std::string> namesInFolder(std::string_view path) const override;
  [[nodiscard]] std::optional<Value> parsePropertyList(std::string_view bytes) const override;
  [[nodiscard]] std::optional<Dictionary> applicationInfo(std::string_view path) const override;

  void setFile(std::string_view path, std::string_view bytes);
  void setPropertyList(std::string_view path, const Value& value);
  void setApplicationInfo(std::string_view path, const Dictionary& info);
  // How often a file's bytes were asked for.
  [[nodiscard]] int reads() const;

 private:
  mutable std::mutex mutex_;
  std::map<std::string, std::string, std::less<>> files_;
  std::map<std::string, Value, std::less<>> propertyLists_;
  std::map<std::string, Dictionary, std::less<>> applications_;
  mutable int reads_ = 0;
};

// The one that `sharedResourceFiles` answers on the fake platform. It starts with the "Info.plist"
// of the fake process: identifier "com.example.program".
FakeResourceFiles& resourceFiles();

}  // namespace vornix::fakes
