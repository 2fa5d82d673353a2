#include "platform/files/NSFileManager.h"

#include <sys/stat.h>

#include <string>

namespace vornix {
namespace {

class LinuxFileManager final : public NSFileManager {
 public:
  [[nodiscard]] bool fileExistsAtPath(std::string_view path, bool* isDirectory) const override {
    struct stat status {};
    const bool isName = path.find('\0') == std::string_view::npos;
    const bool exists = isName && stat(std::string(path).c_str(), &status) == 0;
    if (isDirectory != nullptr) *isDirectory = exists && S_ISDIR(status.st_mode);
    return exists;
  }
};

}  // namespace

NSFileManager& NSFileManager::defaultManager() {
  static auto& manager = *new LinuxFileManager;
  return manager;
}

}  // namespace vornix
