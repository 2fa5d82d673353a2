#include "tests/contract/support/TreeText.h"

#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <sstream>
#include <vector>

namespace vornix::contract {
namespace {

class TreeText {
 public:
  void add(const std::filesystem::path& path, const std::string& name) {
    struct stat status {};
    if (lstat(path.c_str(), &status) != 0) return;
    text_ << name << '|' << std::oct << status.st_mode << std::dec << '|' << status.st_uid << ':'
          << status.st_gid << '|' << status.st_mtim.tv_sec << '.' << status.st_mtim.tv_nsec;
    if (S_ISDIR(status.st_mode)) return addFolder(path, name);
    text_ << '|' << firstName(status, name) << '|';
    if (S_ISREG(status.st_mode)) addContents(path, status);
    if (S_ISLNK(status.st_mode)) text_ << std::filesystem::read_symlink(path).string();
    if (S_ISCHR(status.st_mode) || S_ISBLK(status.st_mode)) text_ << status.st_rdev;
    text_ << '\n';
  }

  [[nodiscard]] std::string result() const { return text_.str(); }

 private:
  // The name under which the same file was met first.
  std::string firstName(const struct stat& status, const std::string& name) {
    return names_.try_emplace({status.st_dev, status.st_ino}, name).first->second;
  }

  void addFolder(const std::filesystem::path& path, const std::string& name) {
    addAttributes(path);
    text_ << '\n';
    std::vector<std::filesystem::path> children(std::filesystem::directory_iterator(path), {});
    std::ranges::sort(children);
    for (const auto& child : children) add(child, name + "/" + child.filename().string());
  }

  void addContents(const std::filesystem::path& path, const struct stat& status) {
    std::ifstream file(path, std::ios::binary);
    const std::string contents{std::istreambuf_iterator<char>(file), {}};
    text_ << status.st_size << ' ' << std::hash<std::string>()(contents);
    addAttributes(path);
  }

  void addAttributes(const std::filesystem::path& path) {
    std::array<char, 4096> names{};
    const ssize_t length = llistxattr(path.c_str(), names.data(), names.size());
    std::map<std::string, std::string> attributes;
    for (ssize_t at = 0; at < length;) {
      const std::string name = names.data() + at;
      at += static_cast<ssize_t>(name.size()) + 1;
      std::array<char, 4096> value{};
      const ssize_t size = lgetxattr(path.c_str(), name.c_str(), value.data(), value.size());
      attributes[name] =
          std::string(value.data(), static_cast<std::size_t>(std::max<ssize_t>(size, 0)));
    }
    for (const auto& [name, value] : attributes) text_ << '|' << name << '=' << value;
  }

  std::ostringstream text_;
  std::map<std::pair<dev_t, ino_t>, std::string> names_;
};

}  // namespace

std::string textOfTree(const std::string& path) {
  TreeText text;
  text.add(path, ".");
  return text.result();
}

}  // namespace vornix::contract
