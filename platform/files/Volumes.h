#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace vornix {

// The volumes that the file system is put together from. Any thread.
class Volumes {
 public:
  virtual ~Volumes() = default;

  // Where the volume that holds this item is mounted: an absolute path without links, and without a
  // slash at its end unless it is "/". Links on the way are followed; the item itself lies where it
  // lies, also when it is a link. None for what does not exist or cannot be reached, an empty path,
  // and one with a zero byte.
  [[nodiscard]] virtual std::optional<std::string> volumePathOf(std::string_view path) const = 0;
};

// The process's own, never destroyed.
[[nodiscard]] const Volumes& sharedVolumes();

}  // namespace vornix
