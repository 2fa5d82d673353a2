#include "platform/linux/desktop/KernelDisplays.h"

#include <dirent.h>

#include <algorithm>
#include <charconv>
#include <string_view>
#include <vector>

#include "platform/base/Text.h"
#include "platform/linux/system/FolderHandle.h"
#include "platform/linux/system/KernelFile.h"

namespace vornix {
namespace {

std::vector<std::string> sortedNames(const std::string& path) {
  std::vector<std::string> names;
  const FolderHandle folder = openFolder(path);
  if (folder == nullptr) {
    return names;
  }
  while (const dirent* entry = readdir(folder.get())) {
    names.emplace_back(static_cast<const char*>(entry->d_name));
  }
  std::ranges::sort(names);
  return names;
}

bool says(const std::string& file, std::string_view word) {
  return text::trim(readKernelFile(file).value_or("")) == word;
}

// "1920x1080", with letters after it for an interlaced mode.
std::optional<Size> parseMode(std::string_view mode) {
  const char* end = mode.data() + mode.size();
  unsigned width = 0;
  unsigned height = 0;
  const auto first = std::from_chars(mode.data(), end, width);
  if (first.ec != std::errc() || first.ptr == end || *first.ptr != 'x') {
    return std::nullopt;
  }
  const auto second = std::from_chars(first.ptr + 1, end, height);
  if (second.ec != std::errc() || width == 0 || height == 0) {
    return std::nullopt;
  }
  return Size{.width = static_cast<double>(width), .height = static_cast<double>(height)};
}

}  // namespace

std::optional<Size> kernelDisplaySize(const std::string& folder) {
  std::optional<Size> dark;
  for (const std::string& name : sortedNames(folder)) {
    const std::string display = text::join({folder, name}, "/");
    if (!says(display + "/status", "connected")) {
      continue;
    }
    const std::string modes = readKernelFile(display + "/modes").value_or("");
    const auto size = parseMode(std::string_view(modes).substr(0, modes.find('\n')));
    if (size && says(display + "/enabled", "enabled")) {
      return size;
    }
    dark = dark ? dark : size;
  }
  return dark;
}

}  // namespace vornix
