#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/files/NSFileManager.h"

// Searches and walks of whole trees.
namespace vornix {

// Full paths of what in the folder, or with `recursive` below it, goes by that name, in the walk's
// order. With `matchByWords`, when every word of the name is a word of the item's name, without
// regard to case and without a file's extension; else when the item's name holds the name. Numbered
// copies ("name 2") never match. The name is part of a regular expression for that: where it makes
// none, such copies match, too. What bears a name of `filterWith` is left out with all below it.
//
// Whatever lies deeper is told as if it lay in the searched folder, and a folder that matches is
// told twice. Items that bear the searched folder's own name are never told. Nothing is found in
// "/" and ".", and without a name; nor, unless `recursive`, below a path that ends in a slash.
[[nodiscard]] std::vector<std::string> findFile(const NSFileManager& self, std::string_view name,
                                                std::string_view atPath, bool matchByWords,
                                                bool recursive,
                                                const std::vector<std::string>& filterWith = {});

// Of an item: its full path, whether it is a folder that is about to be walked through, and what to
// set when the walk shall end.
using WalkHandler = std::function<void(std::string_view path, bool isFolder, bool& stop)>;

// Calls the handler for all that is in the folder, or with `recursive` below it: once for each
// item, and again for a folder that turns out not to be readable. Links are not followed, folders
// on other devices told but not entered. True when no error ended the walk: also for a path that
// leads nowhere. False without a handler and for the empty path. The path told stays until the
// handler returns; what the handler throws ends the walk and reaches the caller.
bool com_orvane_FTSWalkAtPath(const NSFileManager& self, std::string_view path, bool recursive,
                              const WalkHandler& handler);

}  // namespace vornix
