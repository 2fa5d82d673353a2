#include "tests/support/ScratchFolder.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace vornix::tests {

ScratchFolder::ScratchFolder() : ScratchFolder(std::filesystem::temp_directory_path()) {}

ScratchFolder::ScratchFolder(const std::string& parent) {
  std::string pattern = parent + "/vornix-test-XXXXXX";
  if (mkdtemp(pattern.data()) == nullptr) {
    throw std::runtime_error("cannot make " + pattern);
  }
  path_ = pattern;
}

ScratchFolder::~ScratchFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

std::string ScratchFolder::path(std::string_view name) const {
  return path_ + "/" + std::string(name);
}

std::string ScratchFolder::write(std::string_view name, std::string_view contents) const {
  std::string file = path(name);
  std::filesystem::create_directories(std::filesystem::path(file).parent_path());
  std::ofstream stream(file, std::ios::binary | std::ios::trunc);
  stream << contents;
  if (!stream.flush()) {
    throw std::runtime_error("cannot write " + file);
  }
  return file;
}

}  // namespace vornix::tests
