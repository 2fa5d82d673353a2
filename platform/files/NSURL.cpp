#include "platform/files/NSURL.h"

#include <algorithm>
#include <utility>

#include "platform/base/FileUrl.h"
#include "platform/base/PathText.h"
#include "platform/base/PercentEscapes.h"
#include "platform/base/Text.h"
#include "platform/files/NSFileManager.h"

namespace vornix {
namespace {

constexpr std::string_view kBookmarkMark{"Vornix bookmark 1\0", 18};

bool mayStandInUrl(char c) {
  return text::isAsciiLetterOrDigit(c) ||
         std::string_view("-._~:/?#[]@!$&'()*+,;=%").find(c) != std::string_view::npos;
}

bool isUrl(std::string_view text) {
  return !text.empty() && std::ranges::all_of(text, mayStandInUrl) &&
         std::ranges::count(text, '#') <= 1 && text::bytesOfPercentEscapes(text).has_value();
}

// Without its colon; empty where the text has none.
std::string_view schemeOf(std::string_view url) {
  const std::string_view scheme = url.substr(0, std::min(url.find_first_of(":/?#"), url.size()));
  const bool hasColon = scheme.size() < url.size() && url[scheme.size()] == ':';
  const bool isScheme = hasColon && !scheme.empty() && std::ranges::all_of(scheme, [](char c) {
                          return text::isAsciiLetterOrDigit(c) || c == '+' || c == '-' || c == '.';
                        });
  return isScheme && (scheme.front() < '0' || scheme.front() > '9') ? scheme : std::string_view();
}

// Still escaped; empty for a URL without one.
std::string_view pathPartOf(std::string_view url) {
  url = url.substr(0, url.find_first_of("?#"));
  const std::string_view scheme = schemeOf(url);
  if (!scheme.empty()) url.remove_prefix(scheme.size() + 1);
  if (url.starts_with("//")) {
    url.remove_prefix(2);
    url.remove_prefix(std::min(url.find('/'), url.size()));
  } else if (!scheme.empty() && !url.starts_with('/')) {
    return {};
  }
  return url;
}

std::string absolute(std::string_view path, const NSFileManager& files) {
  if (path.starts_with('/')) return std::string(path);
  const std::string current = files.currentDirectoryPath();
  return current.empty() ? current : text::appendingPathComponent(current, path);
}

bool isFolder(const std::string& path, const NSFileManager& files) {
  bool isDirectory = false;
  return files.fileExistsAtPath(path, &isDirectory) && isDirectory;
}

}  // namespace

NSURL NSURL::fileURLWithPath(std::string_view path) {
  return fileURLWithPath(path, NSFileManager::defaultManager());
}

NSURL NSURL::fileURLWithPath(std::string_view path, const NSFileManager& files) {
  const std::string whole = absolute(path, files);
  return ofFile(whole, path.ends_with('/') || isFolder(whole, files));
}

NSURL NSURL::fileURLWithPath(std::string_view path, bool isDirectory) {
  return ofFile(absolute(path, NSFileManager::defaultManager()), isDirectory);
}

NSURL NSURL::ofFile(std::string_view path, bool isDirectory) {
  NSURL url;
  url.path_ = text::withoutTrailingSlashes(path);
  url.text_ = text::fileUrlWithPath(url.path_, isDirectory).value_or("file://");
  url.isFileURL_ = true;
  url.hasDirectoryPath_ = !url.path_.empty() && url.text_.ends_with('/');
  return url;
}

std::optional<NSURL> NSURL::URLWithString(std::string_view text) {
  if (!isUrl(text)) return std::nullopt;
  const std::string_view part = pathPartOf(text);
  std::string path = text::bytesOfPercentEscapes(part).value_or(std::string());
  if (path.find('\0') != std::string::npos) path.clear();
  NSURL url;
  url.text_ = text;
  url.path_ = text::withoutTrailingSlashes(path);
  url.isFileURL_ = text::asciiEqualIgnoringCase(schemeOf(text), "file");
  url.hasDirectoryPath_ = part.ends_with('/');
  return url;
}

NSURL NSURL::URLByAppendingPathComponent(std::string_view component) const {
  return URLByAppendingPathComponent(component, NSFileManager::defaultManager());
}

NSURL NSURL::URLByAppendingPathComponent(std::string_view component,
                                         const NSFileManager& files) const {
  if (!isFileURL_ || path_.empty()) return *this;
  const std::string whole = text::appendingPathComponent(path_, component);
  return ofFile(whole, component.ends_with('/') || isFolder(whole, files));
}

NSURL NSURL::URLByAppendingPathComponent(std::string_view component, bool isDirectory) const {
  if (!isFileURL_ || path_.empty()) return *this;
  return ofFile(text::appendingPathComponent(path_, component), isDirectory);
}

bool NSURL::checkResourceIsReachableAndReturnError(std::optional<NSError>* error) const {
  return checkResourceIsReachableAndReturnError(NSFileManager::defaultManager(), error);
}

bool NSURL::checkResourceIsReachableAndReturnError(const NSFileManager& files,
                                                   std::optional<NSError>* error) const {
  if (isFileURL_) return files.attributesOfItemAtPath(path_, error).has_value();
  if (error != nullptr) {
    *error = NSError{.domain = std::string(NSCocoaErrorDomain),
                     .code = NSFileReadUnsupportedSchemeError,
                     .localizedDescription = "The URL \"" + text_ + "\" names no file."};
  }
  return false;
}

std::optional<Data> NSURL::bookmarkData() const {
  if (!isFileURL_ || path_.empty()) return std::nullopt;
  const std::string bytes = std::string(kBookmarkMark) + path_;
  const auto* first = reinterpret_cast<const std::byte*>(bytes.data());
  return Data(first, first + bytes.size());
}

std::optional<NSURL> NSURL::URLByResolvingBookmarkData(const Data& data, std::uint32_t options) {
  return URLByResolvingBookmarkData(data, options, NSFileManager::defaultManager());
}

std::optional<NSURL> NSURL::URLByResolvingBookmarkData(const Data& data, std::uint32_t /*options*/,
                                                       const NSFileManager& files) {
  const std::string_view bytes(reinterpret_cast<const char*>(data.data()), data.size());
  if (!bytes.starts_with(kBookmarkMark)) return std::nullopt;
  const std::string_view path = bytes.substr(kBookmarkMark.size());
  if (!path.starts_with('/') || !files.fileExistsAtPath(path)) return std::nullopt;
  return fileURLWithPath(path, files);
}

}  // namespace vornix
