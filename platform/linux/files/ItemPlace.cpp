#include "platform/linux/files/ItemPlace.h"

#include <fcntl.h>

#include <utility>

#include "platform/base/PathText.h"

namespace vornix {

int findPlace(std::string_view path, ItemPlace& place) {
  const std::string_view item = text::withoutTrailingSlashes(path);
  if (item.empty()) return ENOENT;
  if (item == "/") return EBUSY;
  const auto slash = item.rfind('/');
  const std::string_view name = slash == std::string_view::npos ? item : item.substr(slash + 1);
  if (name == "." || name == "..") return EINVAL;
  const std::string folder(slash == std::string_view::npos ? "." : item.substr(0, slash + 1));
  FileDescriptor opened(open(folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
  if (!opened.isOpen()) return errno;
  place.folder = std::move(opened);
  place.name = name;
  return 0;
}

}  // namespace vornix
