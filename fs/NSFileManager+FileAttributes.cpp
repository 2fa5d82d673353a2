#include "fs/NSFileManager+FileAttributes.h"

#include "logging/GTMLogger.h"

namespace vornix {
namespace {

constexpr const char* kIsFileHidden = "-[NSFileManager(FileAttributes) isFileHidden:]";

// All zero where there is nothing to look at.
FileDetails detailsAt(std::optional<std::string_view> path, const FileAttributes& attributes) {
  FileDetails details;
  const bool found = path && attributes.details(*path, details) == 0;
  return found ? details : FileDetails();
}

// What casts of wild values would do is undefined.
std::optional<std::int64_t> wholeSeconds(Date date) {
  constexpr double kMost = 9.2e18;
  const double seconds = date.unixTime();
  if (!(seconds > -kMost && seconds < kMost)) return std::nullopt;
  return static_cast<std::int64_t>(seconds);
}

std::optional<std::int64_t> lastUse(std::string_view path, const MetadataIndex& index) {
  const auto item = index.itemAtPath(path);
  if (!item) return std::nullopt;
  const Value* value = item->find(kMDItemLastUsedDate);
  if (value == nullptr) value = item->find(kMDItemContentModificationDate);
  const auto* date = value != nullptr ? value->as<Date>() : nullptr;
  return date != nullptr ? wholeSeconds(*date) : std::nullopt;
}

}  // namespace

std::int64_t statCreationTimeAtPath(const NSFileManager& /*self*/,
                                    std::optional<std::string_view> path,
                                    const FileAttributes& attributes) {
  return detailsAt(path, attributes).birthTime;
}

std::int64_t statModificationTimeAtPath(const NSFileManager& /*self*/,
                                        std::optional<std::string_view> path,
                                        const FileAttributes& attributes) {
  return detailsAt(path, attributes).modificationTime;
}

std::int64_t statAccessTimeAtPath(const NSFileManager& /*self*/,
                                  std::optional<std::string_view> path,
                                  const FileAttributes& attributes, const MetadataIndex& index) {
  if (!path) return 0;
  const auto known = lastUse(*path, index);
  return known ? *known : detailsAt(path, attributes).accessTime;
}

Date lastAccessDateAtPath(const NSFileManager& /*self*/, std::optional<std::string_view> path,
                          const FileAttributes& attributes, const MetadataIndex& index) {
  const std::int64_t seconds =
      statAccessTimeAtPath(NSFileManager::defaultManager(), path, attributes, index);
  return Date::fromUnixTime(static_cast<double>(seconds));
}

bool isFileHidden(const NSFileManager& /*self*/, std::string_view path,
                  const FileAttributes& attributes) {
  FileDetails details;
  if (attributes.details(path, details) == 0) return (details.flags & UF_HIDDEN) != 0;
  GTMLogger::sharedLogger()->logFuncError(kIsFileHidden, "Failed to stat %@", path);
  return false;
}

}  // namespace vornix
