#pragma once

#include <string>
#include <string_view>

namespace vornix::tests {

// A folder of the test's own, in the temporary folder or another, removed with everything in it at
// the end.
class ScratchFolder {
 public:
  ScratchFolder();
  explicit ScratchFolder(const std::string& parent);
  ~ScratchFolder();
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;

  // Absolute, without a trailing slash.
  [[nodiscard]] const std::string& path() const { return path_; }
  // The path of `name` in the folder; it need not exist.
  [[nodiscard]] std::string path(std::string_view name) const;
  // Writes a file, its folders with it. Answers its path.
  std::string write(std::string_view name, std::string_view contents) const;

 private:
  std::string path_;
};

}  // namespace vornix::tests
