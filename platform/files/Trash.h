#pragma once

#include <string_view>

namespace vornix {

// Where a person can get thrown away items back from. Any thread.
class Trash {
 public:
  virtual ~Trash() = default;

  // Moves an item, a link itself, into the Trash of its volume; items there never replace each
  // other. `path` is absolute. Answers 0, or the system's error number (as <cerrno> names it) and
  // has then left the item alone; EOPNOTSUPP where the volume, or the system, has no Trash.
  [[nodiscard]] virtual int moveToTrash(std::string_view path) = 0;
};

// The process's own, never destroyed.
[[nodiscard]] Trash& sharedTrash();

}  // namespace vornix
