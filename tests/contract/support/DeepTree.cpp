#include "tests/contract/support/DeepTree.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "platform/linux/system/FileDescriptor.h"

namespace vornix::contract {
namespace {

constexpr int kFolder = O_RDONLY | O_DIRECTORY | O_CLOEXEC;

}  // namespace

void makeDeepTree(const std::string& path, int depth) {
  ASSERT_EQ(mkdir(path.c_str(), 0700), 0);
  FileDescriptor at(open(path.c_str(), kFolder));
  for (int level = 1; level < depth; ++level) {
    ASSERT_EQ(mknodat(at.get(), "file", S_IFREG | 0600, 0), 0);
    ASSERT_EQ(mkdirat(at.get(), "folder", 0700), 0);
    at = FileDescriptor(openat(at.get(), "folder", kFolder));
    ASSERT_TRUE(at.isOpen());
  }
}

int depthOfTree(const std::string& path) {
  FileDescriptor at(open(path.c_str(), kFolder));
  int depth = 0;
  while (at.isOpen()) {
    ++depth;
    const bool hasFile = faccessat(at.get(), "file", F_OK, 0) == 0;
    at = FileDescriptor(hasFile ? openat(at.get(), "folder", kFolder) : -1);
  }
  return depth;
}

}  // namespace vornix::contract
