#include "platform/linux/files/hierarchy/FolderChain.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <string>
#include <utility>

namespace vornix {
namespace {

constexpr std::size_t kMostOpen = 100;
constexpr int kRealFolderFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

bool isFolder(const FileDescriptor& descriptor, const FolderIdentity& identity) {
  struct stat status {};
  return descriptor.isOpen() && fstat(descriptor.get(), &status) == 0 &&
         FolderIdentity::of(status) == identity;
}

}  // namespace

void FolderChain::push(WalkedFolder folder) {
  if (folders_.size() > kMostOpen) close(folders_.back());
  folders_.push_back(std::move(folder));
}

void FolderChain::pop(const char* path) {
  const FileDescriptor child = std::move(folders_.back().descriptor);
  folders_.pop_back();
  if (!isEmpty() && !innermost().descriptor.isOpen()) reopen(child, path);
}

bool FolderChain::holds(const FoundFolder& folder) {
  return std::ranges::any_of(folders_, [&folder](WalkedFolder& each) {
    return identify(each) && each.identity == folder.identity;
  });
}

bool FolderChain::closeOuterFolders() {
  bool closedAny = false;
  for (std::size_t index = 1; index + 1 < folders_.size(); ++index) {
    if (!folders_[index].descriptor.isOpen()) continue;
    close(folders_[index]);
    closedAny = true;
  }
  return closedAny;
}

void FolderChain::close(WalkedFolder& folder) {
  if (!folder.descriptor.isOpen() || !identify(folder)) return;
  if (!folder.isExhausted)
    folder.readingError = readRemainingRecords(folder.descriptor.get(), folder.unread);
  folder.isExhausted = true;
  folder.descriptor = FileDescriptor();
}

bool FolderChain::identify(WalkedFolder& folder) {
  struct stat status {};
  if (!folder.isIdentified && folder.descriptor.isOpen() &&
      fstat(folder.descriptor.get(), &status) == 0) {
    folder.identity = FolderIdentity::of(status);
    folder.isIdentified = true;
  }
  return folder.isIdentified;
}

void FolderChain::reopen(const FileDescriptor& child, const char* path) {
  WalkedFolder& folder = innermost();
  FileDescriptor descriptor;
  if (child.isOpen()) descriptor = FileDescriptor(openat(child.get(), "..", kRealFolderFlags));
  if (!isFolder(descriptor, folder.identity)) descriptor = openByNames(path);
  folder.openingError = 0;
  if (!descriptor.isOpen()) {
    folder.openingError = errno;
  } else if (!isFolder(descriptor, folder.identity)) {
    // Somebody moved it, and another one may stand in its place.
    folder.openingError = ENOENT;
  } else {
    folder.descriptor = std::move(descriptor);
  }
}

FileDescriptor FolderChain::openByNames(const char* path) const {
  std::size_t index = folders_.size() - 1;
  while (index > 0 && !folders_[index].descriptor.isOpen()) --index;
  int parent = folders_[index].descriptor.get();
  FileDescriptor folder;
  while (++index < folders_.size()) {
    const WalkedFolder& next = folders_[index];
    const std::string name(path + next.nameOffset, next.pathLength - next.nameOffset);
    folder = FileDescriptor(openat(parent, name.c_str(), kRealFolderFlags));
    if (!folder.isOpen()) break;
    parent = folder.get();
  }
  return folder;
}

}  // namespace vornix
