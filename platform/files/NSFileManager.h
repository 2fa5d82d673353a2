#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/base/NSError.h"
#include "platform/files/FileSystem.h"
#include "platform/files/NSDirectoryEnumerator.h"
#include "platform/files/NSURL.h"
#include "platform/files/StandardDirectories.h"
#include "platform/files/Trash.h"

namespace vornix {

// The `NSCocoaErrorDomain` codes of a file manager.
inline constexpr std::int64_t NSFileNoSuchFileError = 4;
inline constexpr std::int64_t NSFileReadUnknownError = 256;
inline constexpr std::int64_t NSFileReadNoPermissionError = 257;
inline constexpr std::int64_t NSFileReadInvalidFileNameError = 258;
inline constexpr std::int64_t NSFileReadNoSuchFileError = 260;
inline constexpr std::int64_t NSFileReadUnsupportedSchemeError = 262;
inline constexpr std::int64_t NSFileReadTooLargeError = 263;
inline constexpr std::int64_t NSFileWriteUnknownError = 512;
inline constexpr std::int64_t NSFileWriteNoPermissionError = 513;
inline constexpr std::int64_t NSFileWriteInvalidFileNameError = 514;
inline constexpr std::int64_t NSFileWriteFileExistsError = 516;
inline constexpr std::int64_t NSFileWriteUnsupportedSchemeError = 518;
inline constexpr std::int64_t NSFileWriteOutOfSpaceError = 640;
inline constexpr std::int64_t NSFileWriteVolumeReadOnlyError = 642;

// The attribute, a boolean, of an item that may not be changed.
inline constexpr std::string_view NSFileImmutable = "NSFileImmutable";

// What stands in the file system. Paths are bytes, relative ones start at the current folder; an
// empty path and one with a zero byte name nothing. Where an operation fails, `error` is set to the
// code of what happened, with the path and the system's own error number; success leaves it as it
// is. Any thread.
class NSFileManager {
 public:
  // All must outlive the manager.
  NSFileManager(FileSystem& fileSystem, const StandardDirectories& directories, Trash& trash)
      : fileSystem_(fileSystem), directories_(directories), trash_(trash) {}

  // The process's own, never destroyed.
  [[nodiscard]] static NSFileManager& defaultManager();

  // Follows links: one that leads nowhere does not exist, and neither does what may not be reached.
  // `isDirectory`, when given, tells whether it is a folder; false where nothing exists.
  [[nodiscard]] bool fileExistsAtPath(std::string_view path, bool* isDirectory = nullptr) const;
  // Of the item itself, also when it is a link.
  [[nodiscard]] std::optional<FileStatus> attributesOfItemAtPath(
      std::string_view path, std::optional<NSError>* error = nullptr) const;
  // The link's text as it stands, one level.
  [[nodiscard]] std::optional<std::string> destinationOfSymbolicLinkAtPath(
      std::string_view path, std::optional<NSError>* error = nullptr) const;

  // The names of what a folder, or the folder that a link leads to, holds: hidden ones, too, but
  // neither "." nor "..", in no particular order.
  [[nodiscard]] std::optional<std::vector<std::string>> contentsOfDirectoryAtPath(
      std::string_view path, std::optional<NSError>* error = nullptr) const;
  // The same as URLs. An option leaves out the hidden ones.
  [[nodiscard]] std::optional<std::vector<NSURL>> contentsOfDirectoryAtURL(
      const NSURL& url, std::uint32_t options = 0, std::optional<NSError>* error = nullptr) const;
  // All that is below a folder, or below the folder that a link leads to. Nothing for anything
  // else. The manager's file system must outlive the enumerator.
  [[nodiscard]] NSDirectoryEnumerator enumeratorAtPath(std::string_view path) const;
  [[nodiscard]] NSDirectoryEnumerator enumeratorAtURL(const NSURL& url,
                                                      std::uint32_t options = 0) const;
  // A walk that tells more; null for the empty path. The manager's file system must outlive it.
  [[nodiscard]] std::unique_ptr<FileHierarchy> hierarchyAtPath(std::string_view path,
                                                               HierarchyOptions options) const;

  // A folder that exists counts as made only with `withIntermediateDirectories`, which makes the
  // folders above, too. New folders have the permissions asked for, else all, and folders above
  // all, less the process's mask.
  bool createDirectoryAtPath(std::string_view path, bool withIntermediateDirectories,
                             std::optional<NSError>* error = nullptr);
  bool createDirectoryAtPath(std::string_view path, bool withIntermediateDirectories,
                             std::uint32_t permissions, std::optional<NSError>* error = nullptr);
  // An empty file; one that exists keeps what it holds. False when no file is there in the end.
  bool createFileAtPath(std::string_view path);
  // Of the item itself, also when it is a link. `NSFileImmutable` can be set, which takes root;
  // what else is named stays as it is.
  bool setAttributes(const Dictionary& attributes, std::string_view ofItemAtPath,
                     std::optional<NSError>* error = nullptr);

  // A folder goes with all that is in it, a link by itself. What had been removed before a failure
  // stays removed.
  bool removeItemAtPath(std::string_view path, std::optional<NSError>* error = nullptr);
  // Holds on to a folder, or to the folder that a link leads to, so that its own items are removed
  // whatever comes to stand at its path; null when there is none or it cannot be read. `names` gets
  // those of what it holds, each with a zero byte behind it.
  [[nodiscard]] std::unique_ptr<HeldFolder> holdDirectoryAtPath(
      std::string_view path, std::string& names, std::optional<NSError>* error = nullptr) const;
  // As `removeItemAtPath`, and with the same errors.
  static bool removeItem(const std::string& name, HeldFolder& ofDirectory,
                         std::optional<NSError>* error = nullptr);
  // A folder goes with all that is in it, a link by itself. Nothing is ever replaced: what stands
  // at the destination is the error, whatever else is wrong. To another volume the item is copied,
  // and removed here once it is safely there; a copy that fails is removed again. The error's path
  // is the destination where that exists already, else the source.
  bool moveItemAtPath(std::string_view path, std::string_view toPath,
                      std::optional<NSError>* error = nullptr);
  // Into the Trash of the item's volume, beside what was put there under the same name before; a
  // volume without one keeps the item, which is the error `NSFileWriteUnknownError`.
  bool trashItemAtURL(const NSURL& url, std::optional<NSError>* error = nullptr);

  // The same by URLs; `NSFileWriteUnsupportedSchemeError` for one that names no file.
  bool createDirectoryAtURL(const NSURL& url, bool withIntermediateDirectories,
                            std::optional<NSError>* error = nullptr);
  bool moveItemAtURL(const NSURL& url, const NSURL& toURL, std::optional<NSError>* error = nullptr);

  // The standard directory search, as folders' URLs.
  [[nodiscard]] std::vector<NSURL> URLsForDirectory(NSSearchPathDirectory kind,
                                                    NSSearchPathDomainMask inDomains) const;
  // Empty where it cannot be told.
  [[nodiscard]] std::string currentDirectoryPath() const { return fileSystem_.currentFolder(); }
  [[nodiscard]] const StandardDirectories& standardDirectories() const { return directories_; }

 private:
  [[nodiscard]] NSDirectoryEnumerator enumerator(std::string_view path,
                                                 std::uint32_t options) const;
  int makeFolderWithParents(std::string_view path, std::uint32_t permissions);

  FileSystem& fileSystem_;
  const StandardDirectories& directories_;
  Trash& trash_;
};

// The type as "NSFileType" names it: "NSFileTypeRegular" and so on.
[[nodiscard]] std::string_view nameOfFileType(FileType type);

}  // namespace vornix
