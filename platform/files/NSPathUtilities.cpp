#include "platform/files/NSPathUtilities.h"

#include <algorithm>
#include <deque>
#include <optional>

#include "platform/base/PathText.h"
#include "platform/base/Text.h"

namespace vornix {
namespace {

constexpr int kMostLinks = 40;

bool liesIn(std::string_view path, std::string_view folder) {
  return path.starts_with(folder) &&
         (path.size() == folder.size() || path[folder.size()] == '/' || folder == "/");
}

std::string withTilde(std::string_view path, std::string_view home) {
  if (!liesIn(path, home)) return std::string(path);
  path.remove_prefix(home.size());
  if (path.empty()) return "~";
  return (path.starts_with('/') ? "~" : "~/") + std::string(path);
}

// Takes "." and ".." out of an absolute path.
class DotResolution {
 public:
  explicit DotResolution(const NSFileManager& files) : files_(files) {}

  std::optional<std::string> resolve(std::string_view path) {
    putInFront(path);
    while (!steps_.empty()) {
      const std::string step = steps_.front();
      steps_.pop_front();
      if (step.empty() || step == ".") continue;
      if (step != "..") {
        at_.append("/").append(step);
      } else if (!goUp()) {
        return std::nullopt;
      }
    }
    return at_.empty() ? "/" : at_;
  }

 private:
  // What is above a link is above the place it leads to.
  bool goUp() {
    const auto target = linkAt(at_);
    at_.resize(std::min(at_.rfind('/'), at_.size()));
    if (!target) return true;
    if (++links_ > kMostLinks) return false;
    if (target->starts_with('/')) at_.clear();
    steps_.emplace_front("..");
    putInFront(*target);
    return true;
  }

  // No system follows longer paths, and looking at each would take long.
  [[nodiscard]] std::optional<std::string> linkAt(const std::string& path) const {
    constexpr std::size_t kLongest = 8192;
    return path.size() > kLongest ? std::nullopt : files_.destinationOfSymbolicLinkAtPath(path);
  }

  void putInFront(std::string_view path) {
    const auto steps = text::split(path, "/");
    steps_.insert(steps_.begin(), steps.begin(), steps.end());
  }

  const NSFileManager& files_;
  std::deque<std::string> steps_;
  // Empty for the root.
  std::string at_;
  int links_ = 0;
};

std::string withoutSingleDots(std::string_view path) {
  std::vector<std::string> steps = text::split(path, "/");
  std::erase_if(steps, [](const std::string& step) { return step.empty() || step == "."; });
  return steps.empty() ? "." : text::join(steps, "/");
}

}  // namespace

std::string NSHomeDirectory(const StandardDirectories& directories) {
  return directories.homeDirectory();
}

std::string NSTemporaryDirectory(const StandardDirectories& directories) {
  return directories.temporaryDirectory();
}

std::vector<std::string> NSSearchPathForDirectoriesInDomains(
    NSSearchPathDirectory kind, NSSearchPathDomainMask domains, bool expandTilde,
    const StandardDirectories& directories) {
  std::vector<std::string> paths = directories.directories(kind, domains);
  if (expandTilde) return paths;
  const std::string home = directories.homeDirectory();
  for (std::string& path : paths) path = withTilde(path, home);
  return paths;
}

std::string stringByExpandingTildeInPath(std::string_view self,
                                         const StandardDirectories& directories) {
  if (!self.starts_with('~')) return std::string(text::withoutTrailingSlashes(self));
  const std::string_view rest = self.substr(std::min(self.find('/'), self.size()));
  const std::string_view user = self.substr(1, self.size() - rest.size() - 1);
  const auto home = user.empty() ? std::optional(directories.homeDirectory())
                                 : directories.homeDirectoryForUser(user);
  return home ? text::appendingPathComponent(*home, rest) : std::string(self);
}

std::string stringByStandardizingPath(std::string_view self, const NSFileManager& files) {
  if (self.empty()) return {};
  const std::string path = stringByExpandingTildeInPath(self, files.standardDirectories());
  if (!path.starts_with('/')) return withoutSingleDots(path);
  return DotResolution(files).resolve(path).value_or(std::string(self));
}

}  // namespace vornix
