#pragma once

#include <cstddef>
#include <string_view>

namespace vornix {

// What a walk met; the numbers are those of fts.
enum class HierarchyKind {
  // A folder, before what it holds.
  folder = 1,
  // A folder that is one of those that led to it, through a mount; it is not entered.
  folderCycle = 2,
  // Neither folder, file nor link.
  other = 3,
  // A folder after `folder`, and after what could be read of it; stands for `folderEnd`.
  unreadableFolder = 4,
  // A folder, after what it holds; one that was not entered, too.
  folderEnd = 6,
  // The walk cannot go on.
  error = 7,
  file = 8,
  // Nothing can be told about the item.
  noStatus = 10,
  // No folder; what it is was not asked.
  notAsked = 11,
  symbolicLink = 12
};

// Both texts stay until the walk is asked for the next entry.
struct HierarchyEntry {
  HierarchyKind kind = HierarchyKind::error;
  // The system's error number of `unreadableFolder`, `error` and `noStatus`, else 0.
  int error = 0;
  // 0 for the item that the walk began with.
  std::size_t level = 0;
  // The path that the walk began with as it was given, and the names below it.
  std::string_view path{};
  // Its last component. For the item that the walk began with what follows the last slash: nothing
  // in "a/"; but "/" for "/".
  std::string_view name{};
};

struct HierarchyOptions {
  // Whatever is no folder is `notAsked`. Only the first item is always told.
  bool noStatus = false;
  // A folder on another device than the first one is told, but not entered.
  bool noCrossing = false;
};

// One walk through a folder and all that is below it, in the order in which the folders keep their
// items. Every folder comes twice, with all that it holds between; links are told and never
// followed, except by a slash at the end of the path that the walk began with. Paths may get longer
// than the system takes, and folders nest as deep as they like. What others swap, move or remove
// meanwhile never leads the walk out of its tree. One thread at a time.
class FileHierarchy {
 public:
  virtual ~FileHierarchy() = default;

  // Null at the end.
  [[nodiscard]] virtual const HierarchyEntry* read() = 0;
  // The entry read last, if it is a `folder`, is not entered: its end follows.
  virtual void skip() = 0;
  // Lets go of all that the walk holds; nothing is read any more.
  virtual void close() = 0;
};

}  // namespace vornix
