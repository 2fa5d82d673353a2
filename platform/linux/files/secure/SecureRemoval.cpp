#include "platform/linux/files/secure/SecureRemoval.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <memory>
#include <utility>

#include "platform/files/FileRemover.h"
#include "platform/linux/system/FileSignals.h"

namespace vornix {
namespace {

// Folders' names kept for a level; more of them are found when the folder is read again.
constexpr std::size_t kMostKeptBytes = 256U << 10U;
// No error number: the level has names enough, or the item turned out to be a folder.
constexpr int kHasEnough = -1;
constexpr int kIsFolder = -2;

unsigned char typeOf(const struct stat& status) {
  return static_cast<unsigned char>(IFTODT(status.st_mode));
}

bool hasOneName(const struct stat& status) {
  return S_ISREG(status.st_mode) && status.st_nlink == 1;
}

bool hasSeveralNames(const struct stat& status) {
  return S_ISREG(status.st_mode) && status.st_nlink > 1;
}

}  // namespace

SecureRemoval::SecureRemoval(RandomBytes& random, std::uint32_t flags)
    : isRecursive_((flags & REMOVEFILE_RECURSIVE) != 0),
      isSecure_((flags & REMOVEFILE_SECURE_1_PASS) != 0),
      queue_(random, isSecure_) {}

int SecureRemoval::run(ItemPlace place) {
  // Lest overwriting a file ends the process where a limit forbids it.
  const FileSignalsAsErrors guard;
  struct stat status {};
  if (const int error = statusAt(place.folder.get(), place.name.c_str(), status)) return error;
  const bool isFolder = S_ISDIR(status.st_mode);
  if (isFolder && isRecursive_) {
    if (const int error = emptyFolder(place)) return error;
  }
  // Nobody but us was to remove the item itself.
  queue_.expectItems();
  const auto folder = std::make_shared<const FileDescriptor>(std::move(place.folder));
  const int error = isFolder ? queue_.add(folder, place.name, RemovalQueue::Kind::folder)
                             : removeOther(folder, place.name.c_str(), typeOf(status));
  if (error == kIsFolder) return EISDIR;
  return error != 0 ? error : queue_.finish();
}

int SecureRemoval::emptyFolder(const ItemPlace& place) {
  FileDescriptor top;
  if (const int error = openSubfolder(place.folder.get(), place.name.c_str(), top)) return error;
  descent_ = FolderDescent(std::move(top));
  levels_.resize(1);
  int error = readFolder();
  while (error == 0 &&
         (levels_.size() > 1 || !levels_.back().folders.empty() || levels_.back().hasMore)) {
    Level& level = levels_.back();
    if (!level.folders.empty()) {
      error = enter(level.folders.pop());
    } else {
      error = level.hasMore ? readAgain() : leave();
    }
  }
  const int earlier = queue_.finish();
  return earlier != 0 ? earlier : error;
}

int SecureRemoval::readFolder() {
  const int answer = reader_.read(descent_.folder(), [this](const char* name, unsigned char type) {
    return keepOrRemove(name, type);
  });
  levels_.back().hasMore = answer == kHasEnough;
  return answer == kHasEnough || meansAbsence(answer) ? 0 : answer;
}

int SecureRemoval::readAgain() {
  // Else what is still to go would be met again.
  if (const int error = queue_.finish()) return error;
  if (lseek(descent_.folder(), 0, SEEK_SET) != 0) return errno;
  return readFolder();
}

int SecureRemoval::keepOrRemove(const char* name, unsigned char type) {
  if (type == DT_DIR) return keep(name);
  RemovalQueue::Folder folder;
  if (const int error = pinFolder(folder)) return error;
  const int error = removeOther(folder, name, type);
  if (error == kIsFolder) return keep(name);
  return meansAbsence(error) ? 0 : error;
}

int SecureRemoval::keep(std::string_view name) {
  levels_.back().folders.push(name);
  return levels_.back().folders.size() < kMostKeptBytes ? 0 : kHasEnough;
}

int SecureRemoval::enter(std::string name) {
  const int error = withDescriptors([&] { return descent_.descend(name); });
  if (error == ENOENT) return 0;
  if (error == ENOTDIR || error == ELOOP) {
    // Swapped for something else since it was read.
    const int answer = keepOrRemove(name.c_str(), DT_UNKNOWN);
    return answer == kHasEnough ? 0 : answer;
  }
  if (error != 0) return error;
  pinned_.reset();
  levels_.push_back({.name = std::move(name)});
  return readFolder();
}

int SecureRemoval::leave() {
  std::string name = std::move(levels_.back().name);
  levels_.pop_back();
  pinned_.reset();
  if (const int error = withDescriptors([&] { return descent_.ascend(); })) return error;
  RemovalQueue::Folder folder;
  if (const int error = pinFolder(folder)) return error;
  return queue_.add(std::move(folder), std::move(name), RemovalQueue::Kind::folder);
}

int SecureRemoval::removeOther(const RemovalQueue::Folder& folder, const char* name,
                               unsigned char type) {
  if (type == DT_UNKNOWN) {
    struct stat status {};
    if (const int error = statusAt(folder->get(), name, status)) return error;
    type = typeOf(status);
    if (type == DT_DIR) return kIsFolder;
  }
  if (isSecure_ && type == DT_REG) return overwriteAndRemove(folder, name);
  return queue_.add(folder, name, RemovalQueue::Kind::other);
}

// What is opened is looked at again, so that nothing put in the file's place is overwritten.
int SecureRemoval::overwriteAndRemove(const RemovalQueue::Folder& folder, const char* name) {
  FileDescriptor file;
  constexpr int kWriting = O_WRONLY | O_NONBLOCK | O_NOCTTY;
  const int openingError =
      withDescriptors([&] { return openWithin(folder->get(), name, kWriting, file); });
  struct stat status {};
  const auto look = [&] {
    return openingError != 0 ? statusAt(folder->get(), name, status)
                             : errorOf(fstat(file.get(), &status));
  };
  if (const int error = look()) return error;
  if (S_ISDIR(status.st_mode)) return kIsFolder;
  if (hasSeveralNames(status) && queue_.holdsNameOf(status)) {
    // This may be the last one, once those met before it are gone.
    if (const int error = queue_.finish()) return error;
    if (const int error = look()) return error;
  }
  if (hasSeveralNames(status)) return queue_.addName(folder, name, status);
  if (!hasOneName(status) || (openingError == 0 && status.st_size == 0))
    return queue_.add(folder, name, RemovalQueue::Kind::other);
  if (openingError != 0) return openingError;
  return queue_.addOverwritten(folder, name, std::move(file), status);
}

int SecureRemoval::pinFolder(RemovalQueue::Folder& folder) {
  if (!pinned_) {
    FileDescriptor copy;
    const int error = withDescriptors([&] {
      copy = FileDescriptor(fcntl(descent_.folder(), F_DUPFD_CLOEXEC, 0));
      return copy.isOpen() ? 0 : errno;
    });
    if (error != 0) return error;
    pinned_ = std::make_shared<const FileDescriptor>(std::move(copy));
  }
  folder = pinned_;
  return 0;
}

template <typename Opening>
int SecureRemoval::withDescriptors(Opening open) {
  const int error = open();
  if (error != EMFILE && error != ENFILE) return error;
  if (const int earlier = queue_.finish()) return earlier;
  return open();
}

}  // namespace vornix
