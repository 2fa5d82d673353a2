#include <dirent.h>

#include <algorithm>
#include <cerrno>

#include "platform/base/Diagnostics.h"
#include "platform/base/NSError.h"
#include "platform/base/PathText.h"
#include "platform/linux/desktop/applications/KeyFile.h"
#include "platform/linux/preferences/FileBytes.h"
#include "platform/linux/preferences/PropertyList.h"
#include "platform/linux/system/FolderHandle.h"
#include "platform/system/ResourceFiles.h"

namespace vornix {
namespace {

constexpr std::string_view kEntryGroup = "Desktop Entry";
constexpr std::string_view kEntrySuffix = ".desktop";

class LinuxResourceFiles final : public ResourceFiles {
 public:
  [[nodiscard]] std::optional<std::string> contents(std::string_view path) const override {
    FileBytes file = readFileBytes(std::string(path));
    if (file.error == 0) return std::move(file.bytes);
    if (file.error != ENOENT && file.error != ENOTDIR) {
      reportDiagnostic(posixError(file.error, path).localizedDescription);
    }
    return std::nullopt;
  }

  [[nodiscard]] std::vector<std::string> namesInFolder(std::string_view path) const override {
    std::vector<std::string> names;
    const FolderHandle folder = openFolder(std::string(path));
    if (!folder) return names;
    while (const dirent* entry = readdir(folder.get())) {
      const std::string_view name = entry->d_name;
      if (name != "." && name != "..") names.emplace_back(name);
    }
    std::ranges::sort(names);
    return names;
  }

  [[nodiscard]] std::optional<Value> parsePropertyList(std::string_view bytes) const override {
    const PropertyListNode node = parsePropertyListNode(bytes);
    return node ? valueOfNode(node.get()) : std::nullopt;
  }

  // An application's bundle is its desktop entry.
  [[nodiscard]] std::optional<Dictionary> applicationInfo(std::string_view path) const override {
    if (!path.ends_with(kEntrySuffix)) return std::nullopt;
    const auto bytes = contents(path);
    if (!bytes) return std::nullopt;
    const auto entry = desktop::KeyFile::parse(*bytes);
    if (!entry.hasGroup(kEntryGroup)) return std::nullopt;
    Dictionary info;
    info.set("CFBundleIdentifier",
             text::lastPathComponent(path.substr(0, path.size() - kEntrySuffix.size())));
    if (auto name = entry.string(kEntryGroup, "Name")) info.set("CFBundleName", std::move(*name));
    auto version = entry.string(kEntryGroup, "X-CFBundleVersion");
    if (!version) version = entry.string(kEntryGroup, "X-AppImage-Version");
    if (version) info.set("CFBundleVersion", std::move(*version));
    return info;
  }
};

}  // namespace

const ResourceFiles& sharedResourceFiles() {
  static const auto& files = *new LinuxResourceFiles;
  return files;
}

}  // namespace vornix
