#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <string>

#include "platform/linux/system/FileDescriptor.h"

namespace vornix::contract {

// Keeps a file that is about to be removed, to see what became of it.
class Witness {
 public:
  explicit Witness(const std::string& path) : file_(open(path.c_str(), O_RDONLY | O_CLOEXEC)) {
    EXPECT_TRUE(file_.isOpen()) << path;
  }

  [[nodiscard]] struct stat status() const {
    struct stat status {};
    EXPECT_EQ(fstat(file_.get(), &status), 0);
    return status;
  }
  [[nodiscard]] std::string contents(std::size_t length, off_t at = 0) const {
    std::string bytes(length, '\0');
    const ssize_t read = pread(file_.get(), bytes.data(), bytes.size(), at);
    bytes.resize(static_cast<std::size_t>(std::max<ssize_t>(read, 0)));
    return bytes;
  }
  [[nodiscard]] std::string contents() const {
    return contents(static_cast<std::size_t>(status().st_size));
  }

 private:
  FileDescriptor file_;
};

}  // namespace vornix::contract
