#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <memory>
#include <optional>
#include <utility>

#include "platform/files/FileSystem.h"
#include "platform/linux/files/FolderReader.h"
#include "platform/linux/files/FolderRemoval.h"
#include "platform/linux/files/ImmutableFlag.h"
#include "platform/linux/files/ItemMove.h"
#include "platform/linux/files/hierarchy/LinuxFileHierarchy.h"
#include "platform/linux/system/CMemory.h"
#include "platform/linux/system/FileDescriptor.h"
#include "platform/linux/system/FolderHandle.h"

namespace vornix {
namespace {

// None, with `errno` set, where the system would see less than the whole path.
std::optional<std::string> nameOf(std::string_view path) {
  if (path.find('\0') == std::string_view::npos) return std::string(path);
  errno = ENOENT;
  return std::nullopt;
}

FileType typeOf(unsigned mode) {
  switch (mode & S_IFMT) {
    case S_IFREG:
      return FileType::regular;
    case S_IFDIR:
      return FileType::directory;
    case S_IFLNK:
      return FileType::symbolicLink;
    case S_IFSOCK:
      return FileType::socket;
    case S_IFCHR:
      return FileType::characterSpecial;
    case S_IFBLK:
      return FileType::blockSpecial;
    default:
      return FileType::unknown;
  }
}

bool isFolder(DIR* folder, const dirent& item) {
  if (item.d_type != DT_UNKNOWN) return item.d_type == DT_DIR;
  struct stat found {};
  return fstatat(dirfd(folder), item.d_name, &found, AT_SYMLINK_NOFOLLOW) == 0 &&
         S_ISDIR(found.st_mode);
}

int listFolder(const std::string& path, std::vector<FolderItem>& items) {
  const FolderHandle folder = openFolder(path);
  if (!folder) return errno;
  std::vector<FolderItem> found;
  errno = 0;
  while (const dirent* item = readdir(folder.get())) {
    const std::string_view name = item->d_name;
    if (name != "." && name != "..")
      found.push_back({.name = std::string(name), .isFolder = isFolder(folder.get(), *item)});
    errno = 0;
  }
  if (errno != 0) return errno;
  items = std::move(found);
  return 0;
}

class LinuxHeldFolder final : public HeldFolder {
 public:
  LinuxHeldFolder(std::string_view path, FileDescriptor folder)
      : HeldFolder(path), folder_(std::move(folder)) {}

  [[nodiscard]] int list(std::string& names) const override {
    std::string found;
    if (lseek(folder_.get(), 0, SEEK_SET) != 0) return errno;
    const int error = FolderReader().read(folder_.get(), [&](const char* name, unsigned char) {
      found.append(name).push_back('\0');
      return 0;
    });
    if (error == 0) names = std::move(found);
    return error;
  }

  [[nodiscard]] int remove(const std::string& name) override {
    return removeItemIn(folder_.get(), name);
  }

 private:
  const FileDescriptor folder_;
};

class LinuxFileSystem final : public FileSystem {
 public:
  [[nodiscard]] int status(std::string_view path, bool followsLinks,
                           FileStatus& status) const override {
    const auto name = nameOf(path);
    constexpr unsigned kAsked = STATX_TYPE | STATX_MODE | STATX_UID;
    struct statx found {};
    const int flags = followsLinks ? 0 : AT_SYMLINK_NOFOLLOW;
    if (!name || statx(AT_FDCWD, name->c_str(), flags, kAsked, &found) != 0) return errno;
    status = {.type = typeOf(found.stx_mode),
              .permissions = found.stx_mode & 0777U,
              .isOwn = found.stx_uid == geteuid(),
              .isImmutable = (found.stx_attributes & STATX_ATTR_IMMUTABLE) != 0};
    return 0;
  }

  [[nodiscard]] int readLink(std::string_view path, std::string& target) const override {
    const auto name = nameOf(path);
    if (!name) return errno;
    std::string text(256, '\0');
    ssize_t length = readlink(name->c_str(), text.data(), text.size());
    while (length == static_cast<ssize_t>(text.size())) {
      text.resize(text.size() * 2);
      length = readlink(name->c_str(), text.data(), text.size());
    }
    if (length < 0) return errno;
    text.resize(static_cast<std::size_t>(length));
    target = std::move(text);
    return 0;
  }

  [[nodiscard]] int list(std::string_view path, std::vector<FolderItem>& items) const override {
    const auto name = nameOf(path);
    return name ? listFolder(*name, items) : errno;
  }

  [[nodiscard]] int openHierarchy(std::string_view path, HierarchyOptions options,
                                  std::unique_ptr<FileHierarchy>& hierarchy) const override {
    return openLinuxHierarchy(path, options, hierarchy);
  }

  [[nodiscard]] int makeFolder(std::string_view path, std::uint32_t permissions) override {
    const auto name = nameOf(path);
    return name && mkdir(name->c_str(), permissions) == 0 ? 0 : errno;
  }

  [[nodiscard]] int makeFile(std::string_view path) override {
    const auto name = nameOf(path);
    if (!name) return errno;
    const FileDescriptor file(open(name->c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
    return file.isOpen() ? 0 : errno;
  }

  [[nodiscard]] int holdFolder(std::string_view path,
                               std::unique_ptr<HeldFolder>& folder) const override {
    const auto name = nameOf(path);
    FileDescriptor opened(name ? open(name->c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC) : -1);
    if (!opened.isOpen()) return errno;
    folder = std::make_unique<LinuxHeldFolder>(path, std::move(opened));
    return 0;
  }

  [[nodiscard]] int remove(std::string_view path) override {
    const auto name = nameOf(path);
    return name ? removeItem(*name) : errno;
  }

  [[nodiscard]] int move(std::string_view source, std::string_view destination) override {
    const auto from = nameOf(source);
    const auto to = nameOf(destination);
    return from && to ? moveItem(*from, *to) : errno;
  }

  [[nodiscard]] int setImmutable(std::string_view path, bool isImmutable) override {
    const auto name = nameOf(path);
    return name ? setImmutableFlag(*name, isImmutable) : errno;
  }

  [[nodiscard]] std::string currentFolder() const override {
    const CMemory<char> path(get_current_dir_name());
    return path && *path == '/' ? path.get() : "";
  }
};

}  // namespace

FileSystem& sharedFileSystem() {
  static auto& fileSystem = *new LinuxFileSystem;
  return fileSystem;
}

}  // namespace vornix
