#include <gio/gio.h>

#include <cerrno>
#include <memory>
#include <optional>
#include <string>

#include "platform/base/Diagnostics.h"
#include "platform/base/PathText.h"
#include "platform/files/Trash.h"
#include "platform/linux/files/CanonicalPath.h"
#include "platform/linux/system/SharedLibrary.h"

namespace vornix {
namespace {

struct GioLibrary {
  decltype(&g_vfs_get_local) localVfs = nullptr;
  decltype(&g_vfs_get_file_for_path) fileForPath = nullptr;
  decltype(&g_file_trash) trash = nullptr;
  decltype(&g_object_unref) unreference = nullptr;
  decltype(&g_error_free) freeError = nullptr;
  decltype(&g_io_error_quark) errorDomain = nullptr;

  static std::optional<GioLibrary> load() {
    std::string why;
    const auto library = SharedLibrary::open("libgio-2.0.so.0", &why);
    GioLibrary gio;
    const bool isComplete = library && library->bind(gio.localVfs, "g_vfs_get_local", &why) &&
                            library->bind(gio.fileForPath, "g_vfs_get_file_for_path", &why) &&
                            library->bind(gio.trash, "g_file_trash", &why) &&
                            library->bind(gio.unreference, "g_object_unref", &why) &&
                            library->bind(gio.freeError, "g_error_free", &why) &&
                            library->bind(gio.errorDomain, "g_io_error_quark", &why);
    if (isComplete) return gio;
    reportDiagnostic("Nothing can be put into the Trash: " + why);
    return std::nullopt;
  }
};

int numberOf(int code) {
  switch (code) {
    case G_IO_ERROR_NOT_FOUND:
      return ENOENT;
    case G_IO_ERROR_PERMISSION_DENIED:
      return EACCES;
    case G_IO_ERROR_READ_ONLY:
      return EROFS;
    case G_IO_ERROR_NO_SPACE:
      return ENOSPC;
    case G_IO_ERROR_FILENAME_TOO_LONG:
      return ENAMETOOLONG;
    case G_IO_ERROR_NOT_SUPPORTED:
      return EOPNOTSUPP;
    case G_IO_ERROR_BUSY:
      return EBUSY;
    default:
      return EIO;
  }
}

int trashItem(const GioLibrary& gio, const std::string& path) {
  // The local files themselves: the session's own view of them would first be asked for on the bus.
  const std::unique_ptr<GFile, decltype(gio.unreference)> file(
      gio.fileForPath(gio.localVfs(), path.c_str()), gio.unreference);
  GError* error = nullptr;
  if (gio.trash(file.get(), nullptr, &error) != FALSE) return 0;
  const std::unique_ptr<GError, decltype(gio.freeError)> owner(error, gio.freeError);
  return error != nullptr && error->domain == gio.errorDomain() ? numberOf(error->code) : EIO;
}

class GioTrash final : public Trash {
 public:
  [[nodiscard]] int moveToTrash(std::string_view path) override {
    const std::string_view item = text::withoutTrailingSlashes(path);
    const std::string name = text::lastPathComponent(item);
    if (name == "/") return EBUSY;
    if (name == "." || name == "..") return EINVAL;
    // The library takes ".." out of paths as if there were no links.
    const auto whole = canonicalPathOf(item);
    if (!whole) return errno;
    static const auto& gio = *new std::optional<GioLibrary>(GioLibrary::load());
    return gio ? trashItem(*gio, *whole) : EOPNOTSUPP;
  }
};

}  // namespace

Trash& sharedTrash() {
  static auto& trash = *new GioTrash;
  return trash;
}

}  // namespace vornix
