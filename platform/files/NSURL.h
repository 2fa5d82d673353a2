#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/base/NSError.h"
#include "platform/base/Value.h"

namespace vornix {

class NSFileManager;

// A URL; above all one of a file, whose path may hold any bytes but zero. A value: it never changes
// and asks nothing of the disk but where that is said. The operations that ask take the file
// manager to ask; without one they ask the process's own.
class NSURL {
 public:
  // A relative path starts at the current folder; where that cannot be told, as when it has been
  // removed, the URL has no path and names nothing. The URL is a folder's when `isDirectory` says
  // so, or, without it, when the path ends in a slash or a folder stands there now.
  [[nodiscard]] static NSURL fileURLWithPath(std::string_view path);
  [[nodiscard]] static NSURL fileURLWithPath(std::string_view path, const NSFileManager& files);
  [[nodiscard]] static NSURL fileURLWithPath(std::string_view path, bool isDirectory);
  // None for the empty text and one with a character that may not stand in a URL unescaped, or with
  // a broken escape. The scheme may be missing.
  [[nodiscard]] static std::optional<NSURL> URLWithString(std::string_view text);

  // Of a file URL; any other, and one without a path, comes back as it is. Asks the disk as
  // `fileURLWithPath` does.
  [[nodiscard]] NSURL URLByAppendingPathComponent(std::string_view component) const;
  [[nodiscard]] NSURL URLByAppendingPathComponent(std::string_view component,
                                                  const NSFileManager& files) const;
  [[nodiscard]] NSURL URLByAppendingPathComponent(std::string_view component,
                                                  bool isDirectory) const;

  // The path's bytes, escapes resolved, without a slash at the end unless it is "/". Empty where
  // the URL has none, as in "mailto:a", and where it would hold a zero byte.
  [[nodiscard]] const std::string& path() const { return path_; }
  [[nodiscard]] bool isFileURL() const { return isFileURL_; }
  // True when the URL's path ends in a slash.
  [[nodiscard]] bool hasDirectoryPath() const { return hasDirectoryPath_; }
  // "file:///tmp/a%20b/": every byte of a file's path that is no plain letter is escaped.
  [[nodiscard]] const std::string& absoluteString() const { return text_; }
  // What "%@" prints.
  [[nodiscard]] const std::string& description() const { return text_; }

  // Whether something stands there now; a link is not followed. On failure `error` says why, else
  // it stays as it is. URLs of other schemes are never reachable.
  [[nodiscard]] bool checkResourceIsReachableAndReturnError(
      std::optional<NSError>* error = nullptr) const;
  [[nodiscard]] bool checkResourceIsReachableAndReturnError(const NSFileManager& files,
                                                            std::optional<NSError>* error) const;

  // Data that leads to this file later; none for a URL of another scheme.
  [[nodiscard]] std::optional<Data> bookmarkData() const;
  // The file that such data leads to, if it still exists. No option changes anything. None for any
  // other data.
  [[nodiscard]] static std::optional<NSURL> URLByResolvingBookmarkData(const Data& data,
                                                                       std::uint32_t options);
  [[nodiscard]] static std::optional<NSURL> URLByResolvingBookmarkData(const Data& data,
                                                                       std::uint32_t options,
                                                                       const NSFileManager& files);

  // By the whole text: a folder's URL differs from that of a file of the same path.
  friend bool operator==(const NSURL& left, const NSURL& right) {
    return left.text_ == right.text_;
  }

 private:
  NSURL() = default;
  [[nodiscard]] static NSURL ofFile(std::string_view path, bool isDirectory);

  std::string text_;
  std::string path_;
  bool isFileURL_ = false;
  bool hasDirectoryPath_ = false;
};

}  // namespace vornix
