#include "platform/files/NSFileManager.h"

#include <cerrno>
#include <system_error>
#include <utility>

#include "platform/base/PathText.h"

namespace vornix {
namespace {

constexpr std::uint32_t kAllPermissions = 0777;

std::int64_t readingCode(int number) {
  switch (number) {
    case ENOENT:
      return NSFileReadNoSuchFileError;
    case EPERM:
    case EACCES:
      return NSFileReadNoPermissionError;
    case ENAMETOOLONG:
      return NSFileReadInvalidFileNameError;
    case EFBIG:
      return NSFileReadTooLargeError;
    default:
      return NSFileReadUnknownError;
  }
}

std::int64_t writingCode(int number) {
  switch (number) {
    case ENOENT:
      return NSFileNoSuchFileError;
    case EPERM:
    case EACCES:
      return NSFileWriteNoPermissionError;
    case ENAMETOOLONG:
      return NSFileWriteInvalidFileNameError;
    case EEXIST:
      return NSFileWriteFileExistsError;
    case ENOSPC:
#ifdef EDQUOT
    case EDQUOT:
#endif
      return NSFileWriteOutOfSpaceError;
    case EROFS:
      return NSFileWriteVolumeReadOnlyError;
    default:
      return NSFileWriteUnknownError;
  }
}

// Sets the error where there is one; answers whether there is none.
bool succeeded(int number, std::int64_t (*codeOf)(int), std::string_view path,
               std::optional<NSError>* error) {
  if (number != 0 && error != nullptr) {
    *error = NSError{
        .domain = std::string(NSCocoaErrorDomain),
        .code = codeOf(number),
        .localizedDescription = std::string(path) + ": " + std::generic_category().message(number),
        .filePath = std::string(path),
        .underlyingErrno = number};
  }
  return number == 0;
}

bool namesFile(const NSURL& url, std::optional<NSError>* error) {
  if (!url.isFileURL() && error != nullptr) {
    *error =
        NSError{.domain = std::string(NSCocoaErrorDomain),
                .code = NSFileWriteUnsupportedSchemeError,
                .localizedDescription = "The URL \"" + url.absoluteString() + "\" names no file."};
  }
  return url.isFileURL();
}

bool removed(int number, std::string_view path, std::optional<NSError>* error) {
  // Somebody keeps filling the folder.
  return succeeded(number == ENOTEMPTY ? EPERM : number, writingCode, path, error);
}

}  // namespace

NSFileManager& NSFileManager::defaultManager() {
  static auto& manager =
      *new NSFileManager(sharedFileSystem(), sharedStandardDirectories(), sharedTrash());
  return manager;
}

bool NSFileManager::fileExistsAtPath(std::string_view path, bool* isDirectory) const {
  FileStatus status;
  const bool exists = fileSystem_.status(path, true, status) == 0;
  if (isDirectory != nullptr) *isDirectory = exists && status.type == FileType::directory;
  return exists;
}

std::optional<FileStatus> NSFileManager::attributesOfItemAtPath(
    std::string_view path, std::optional<NSError>* error) const {
  FileStatus status;
  const int number = fileSystem_.status(path, false, status);
  return succeeded(number, readingCode, path, error) ? std::optional(status) : std::nullopt;
}

std::optional<std::string> NSFileManager::destinationOfSymbolicLinkAtPath(
    std::string_view path, std::optional<NSError>* error) const {
  std::string target;
  const int number = fileSystem_.readLink(path, target);
  if (!succeeded(number, readingCode, path, error)) return std::nullopt;
  return target;
}

std::optional<std::vector<std::string>> NSFileManager::contentsOfDirectoryAtPath(
    std::string_view path, std::optional<NSError>* error) const {
  std::vector<FolderItem> items;
  const int number = fileSystem_.list(path, items);
  if (!succeeded(number, readingCode, path, error)) return std::nullopt;
  std::vector<std::string> names;
  names.reserve(items.size());
  for (FolderItem& item : items) names.push_back(std::move(item.name));
  return names;
}

std::optional<std::vector<NSURL>> NSFileManager::contentsOfDirectoryAtURL(
    const NSURL& url, std::uint32_t options, std::optional<NSError>* error) const {
  if (!url.isFileURL()) {
    (void)url.checkResourceIsReachableAndReturnError(*this, error);
    return std::nullopt;
  }
  std::vector<FolderItem> items;
  const int number = fileSystem_.list(url.path(), items);
  if (!succeeded(number, readingCode, url.path(), error)) return std::nullopt;
  std::vector<NSURL> urls;
  urls.reserve(items.size());
  for (const FolderItem& item : items) {
    if (!NSDirectoryEnumerator::leavesOut(item.name, options))
      urls.push_back(url.URLByAppendingPathComponent(item.name, item.isFolder));
  }
  return urls;
}

NSDirectoryEnumerator NSFileManager::enumeratorAtPath(std::string_view path) const {
  return enumerator(path, 0);
}

NSDirectoryEnumerator NSFileManager::enumeratorAtURL(const NSURL& url,
                                                     std::uint32_t options) const {
  return enumerator(url.isFileURL() ? url.path() : std::string_view(), options);
}

NSDirectoryEnumerator NSFileManager::enumerator(std::string_view path,
                                                std::uint32_t options) const {
  std::string folder(path);
  // So that a link is followed.
  if (!folder.empty() && !folder.ends_with('/')) folder += '/';
  auto hierarchy = hierarchyAtPath(folder, {.noStatus = true});
  return {std::move(hierarchy), std::move(folder), options};
}

std::unique_ptr<FileHierarchy> NSFileManager::hierarchyAtPath(std::string_view path,
                                                              HierarchyOptions options) const {
  std::unique_ptr<FileHierarchy> hierarchy;
  return fileSystem_.openHierarchy(path, options, hierarchy) == 0 ? std::move(hierarchy) : nullptr;
}

bool NSFileManager::createDirectoryAtPath(std::string_view path, bool withIntermediateDirectories,
                                          std::optional<NSError>* error) {
  return createDirectoryAtPath(path, withIntermediateDirectories, kAllPermissions, error);
}

bool NSFileManager::createDirectoryAtPath(std::string_view path, bool withIntermediateDirectories,
                                          std::uint32_t permissions,
                                          std::optional<NSError>* error) {
  const int number = withIntermediateDirectories ? makeFolderWithParents(path, permissions)
                                                 : fileSystem_.makeFolder(path, permissions);
  return succeeded(number, writingCode, path, error);
}

int NSFileManager::makeFolderWithParents(std::string_view path, std::uint32_t permissions) {
  // The whole path first: nearly always all of its parents exist.
  std::vector<std::string> missing;
  std::string folder(path);
  int number = fileSystem_.makeFolder(folder, permissions);
  while (number == ENOENT) {
    std::string parent = text::deletingLastPathComponent(folder);
    if (parent.empty() || parent == folder) return number;
    missing.push_back(std::exchange(folder, std::move(parent)));
    number = fileSystem_.makeFolder(folder, kAllPermissions);
  }
  while (!missing.empty() && (number == 0 || number == EEXIST)) {
    const bool isLast = missing.size() == 1;
    number = fileSystem_.makeFolder(missing.back(), isLast ? permissions : kAllPermissions);
    missing.pop_back();
  }
  bool isFolder = false;
  const bool wasThere = number == EEXIST && fileExistsAtPath(path, &isFolder) && isFolder;
  return wasThere ? 0 : number;
}

bool NSFileManager::createFileAtPath(std::string_view path) {
  if (fileSystem_.makeFile(path) == 0) return true;
  bool isFolder = false;
  return fileExistsAtPath(path, &isFolder) && !isFolder;
}

bool NSFileManager::removeItemAtPath(std::string_view path, std::optional<NSError>* error) {
  return removed(fileSystem_.remove(path), path, error);
}

std::unique_ptr<HeldFolder> NSFileManager::holdDirectoryAtPath(
    std::string_view path, std::string& names, std::optional<NSError>* error) const {
  std::unique_ptr<HeldFolder> folder;
  int number = fileSystem_.holdFolder(path, folder);
  if (number == 0) number = folder->list(names);
  return succeeded(number, readingCode, path, error) ? std::move(folder) : nullptr;
}

bool NSFileManager::removeItem(const std::string& name, HeldFolder& ofDirectory,
                               std::optional<NSError>* error) {
  const int number = ofDirectory.remove(name);
  return number == 0 ||
         removed(number, text::appendingPathComponent(ofDirectory.path(), name), error);
}

bool NSFileManager::setAttributes(const Dictionary& attributes, std::string_view ofItemAtPath,
                                  std::optional<NSError>* error) {
  FileStatus status;
  int number = fileSystem_.status(ofItemAtPath, false, status);
  const Value* isImmutable = attributes.find(NSFileImmutable);
  if (number == 0 && isImmutable != nullptr)
    number = fileSystem_.setImmutable(ofItemAtPath, isImmutable->boolValue());
  return succeeded(number, writingCode, ofItemAtPath, error);
}

bool NSFileManager::moveItemAtPath(std::string_view path, std::string_view toPath,
                                   std::optional<NSError>* error) {
  const int number = fileSystem_.move(path, toPath);
  return succeeded(number, writingCode, number == EEXIST ? toPath : path, error);
}

bool NSFileManager::trashItemAtURL(const NSURL& url, std::optional<NSError>* error) {
  return namesFile(url, error) &&
         succeeded(trash_.moveToTrash(url.path()), writingCode, url.path(), error);
}

bool NSFileManager::createDirectoryAtURL(const NSURL& url, bool withIntermediateDirectories,
                                         std::optional<NSError>* error) {
  return namesFile(url, error) &&
         createDirectoryAtPath(url.path(), withIntermediateDirectories, error);
}

bool NSFileManager::moveItemAtURL(const NSURL& url, const NSURL& toURL,
                                  std::optional<NSError>* error) {
  return namesFile(url, error) && namesFile(toURL, error) &&
         moveItemAtPath(url.path(), toURL.path(), error);
}

std::vector<NSURL> NSFileManager::URLsForDirectory(NSSearchPathDirectory kind,
                                                   NSSearchPathDomainMask inDomains) const {
  std::vector<NSURL> urls;
  for (const std::string& path : directories_.directories(kind, inDomains))
    urls.push_back(NSURL::fileURLWithPath(path, true));
  return urls;
}

std::string_view nameOfFileType(FileType type) {
  switch (type) {
    case FileType::regular:
      return "NSFileTypeRegular";
    case FileType::directory:
      return "NSFileTypeDirectory";
    case FileType::symbolicLink:
      return "NSFileTypeSymbolicLink";
    case FileType::socket:
      return "NSFileTypeSocket";
    case FileType::characterSpecial:
      return "NSFileTypeCharacterSpecial";
    case FileType::blockSpecial:
      return "NSFileTypeBlockSpecial";
    case FileType::unknown:
      break;
  }
  return "NSFileTypeUnknown";
}

}  // namespace vornix
