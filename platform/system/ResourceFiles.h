#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/base/Value.h"

namespace vornix {

// Files that a program only reads: its resources, property lists, other programs' bundles. What is
// missing or unreadable reads as absent; unreadable is also reported as a diagnostic. Any thread.
class ResourceFiles {
 public:
  virtual ~ResourceFiles() = default;

  // A regular file's bytes, up to 64 MiB of them; a larger file counts as unreadable.
  [[nodiscard]] virtual std::optional<std::string> contents(std::string_view path) const = 0;
  // Sorted, without the folder's own two names; empty when there is no such folder.
  [[nodiscard]] virtual std::vector<std::string> namesInFolder(std::string_view path) const = 0;
  // The bytes of a property list in binary or XML form; none for anything else.
  [[nodiscard]] virtual std::optional<Value> parsePropertyList(std::string_view bytes) const = 0;
  // What an application's bundle says of it ("CFBundleIdentifier", "CFBundleName",
  // "CFBundleVersion", each where it is known); none where there is no application.
  [[nodiscard]] virtual std::optional<Dictionary> applicationInfo(std::string_view path) const = 0;
};

// The process's own, never destroyed.
[[nodiscard]] const ResourceFiles& sharedResourceFiles();

}  // namespace vornix
