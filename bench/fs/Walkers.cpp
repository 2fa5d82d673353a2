#include "bench/fs/Walkers.h"

#include <dirent.h>
#include <fcntl.h>
#include <fts.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string_view>

#include "fs/NSFileManager+FileModificationsAdditions.h"

namespace vornix::bench {
namespace {

[[noreturn]] void giveUp(const char* what) {
  std::perror(what);
  std::exit(2);
}

// What nobody can do without: opens, reads and closes every folder, and builds no paths.
// NOLINTNEXTLINE(misc-no-recursion): the tree is flat.
std::size_t walkRawBelow(int folder) {
  alignas(dirent64) std::array<char, 32768> batch;
  std::size_t count = 0;
  ssize_t length = 0;
  while ((length = getdents64(folder, batch.data(), batch.size())) > 0) {
    for (ssize_t at = 0; at < length;) {
      const auto* item = reinterpret_cast<const dirent64*>(batch.data() + at);
      at += item->d_reclen;
      const std::string_view name = item->d_name;
      if (name == "." || name == "..") continue;
      ++count;
      if (item->d_type != DT_DIR) continue;
      const int inner =
          openat(folder, item->d_name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
      if (inner < 0) giveUp(item->d_name);
      count += walkRawBelow(inner);
    }
  }
  close(folder);
  return count;
}

}  // namespace

std::size_t walkRaw(const std::string& folder) {
  const int descriptor = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (descriptor < 0) giveUp(folder.c_str());
  return walkRawBelow(descriptor);
}

std::size_t walkWithFts(const std::string& folder) {
  std::string path = folder;
  char* paths[] = {path.data(), nullptr};
  FTS* walk = fts_open(paths, FTS_NOCHDIR | FTS_NOSTAT | FTS_PHYSICAL | FTS_XDEV, nullptr);
  if (walk == nullptr) giveUp(folder.c_str());
  std::size_t count = 0;
  while (const FTSENT* entry = fts_read(walk)) {
    if (entry->fts_info != FTS_DP && entry->fts_level > 0) ++count;
  }
  fts_close(walk);
  return count;
}

std::size_t walkWithStandardLibrary(const std::string& folder) {
  std::size_t count = 0;
  for (const auto& item : std::filesystem::recursive_directory_iterator(folder)) {
    (void)item;
    ++count;
  }
  return count;
}

std::size_t walkWithOurs(const std::string& folder) {
  std::size_t count = 0;
  (void)com_orvane_FTSWalkAtPath(NSFileManager::defaultManager(), folder, true,
                                 [&count](std::string_view, bool, bool&) { ++count; });
  return count;
}

}  // namespace vornix::bench
