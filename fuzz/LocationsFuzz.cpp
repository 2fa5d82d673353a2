#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "fuzz/support/Require.h"
#include "platform/files/NSPathUtilities.h"
#include "platform/files/NSURL.h"
#include "platform/linux/files/UserDirectories.h"

using namespace vornix;

namespace {

bool isWholePath(std::string_view path) {
  return path == "/" || (path.starts_with('/') && !path.ends_with('/') &&
                         path.find('\0') == std::string_view::npos);
}

void checkUrl(std::string_view text) {
  const auto url = NSURL::URLWithString(text);
  if (!url) return;
  fuzz::require(url->absoluteString() == text);
  fuzz::require(url->path().find('\0') == std::string::npos);
}

void checkPath(const std::string& path) {
  const NSURL url = NSURL::fileURLWithPath(path, path.size() % 2 == 0);
  const auto again = NSURL::URLWithString(url.absoluteString());
  fuzz::require(again && again->isFileURL() && *again == url);
  const bool hasZero = path.find('\0') != std::string::npos;
  fuzz::require(again->path() == (hasZero ? "" : url.path()));
  fuzz::require(hasZero || isWholePath(url.path()));
  if (!hasZero) fuzz::require(isWholePath(stringByStandardizingPath(path)));
}

}  // namespace

// A person's folders, URLs of other programs and paths are read, or refused.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const auto folder = userDirectory(text, "XDG_DOWNLOAD_DIR", "/home/ada");
  fuzz::require(!folder || isWholePath(*folder));
  checkUrl(text);
  checkPath("/" + std::string(text));
  static_cast<void>(stringByStandardizingPath(text));
  const auto* bytes = reinterpret_cast<const std::byte*>(data);
  static_cast<void>(NSURL::URLByResolvingBookmarkData(Data(bytes, bytes + size), 0));
  return 0;
}
