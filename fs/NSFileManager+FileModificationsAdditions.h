#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/files/FileRemover.h"
#include "platform/files/NSFileManager.h"
#include "platform/system/NSBundle.h"

// Searches and walks of whole trees; removing, unlocking, cutting and moving, with fixed ways out
// where the first attempt fails.
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

// Of all that follow: `error` is written only where that is said, and then holds the platform's
// error. What goes wrong is logged. Nothing is thrown. Any thread.

// Cuts a file to length 0. False, without a message, for a folder and for what cannot be opened for
// writing.
bool truncateFileAtPath(NSFileManager& self, std::string_view path);

// Removes an item, a folder with all that is in it; what does not exist counts as removed. When
// that fails, the item and the folder around it are unlocked and it is tried once more. `error`
// gets the last failure, also that of the first attempt when the second one succeeds: ask the
// answer.
bool removeFileAtPath(NSFileManager& self, std::string_view path,
                      std::optional<NSError>* error = nullptr);

// Clears the immutable flag of this one item. False only when it has the flag and keeps it; an item
// that cannot be looked at has nothing to unlock.
bool tryToUnlockFileIfNeeded(NSFileManager& self, std::string_view path);

// Removes all that is in a folder, as `removeFileAtPath` does, and leaves the folder. One item that
// stays does not keep the others from being removed. True when every one is gone, false when the
// folder cannot be read.
bool removeContentsOfDirectoryAtPath(NSFileManager& self, std::string_view path);

// Unlocks and moves an item. The folder that already holds the item as the destination is a
// success that moves nothing; a destination without a slash, or an empty one, is the Trash. Missing
// folders above the destination are made; what stands at the destination is never replaced.
bool advancedMoveItemAtPath(NSFileManager& self, std::string_view path, std::string_view toPath,
                            std::optional<NSError>* error = nullptr);

// Moves an item through the process's own file manager, whatever the receiver is. On demand it
// makes the folders above the destination, and removes what stands at the destination, without
// unlocking it.
bool moveItemAtPath(NSFileManager& self, std::string_view path, std::string_view toPath,
                    bool createDstIntermediatePath, bool removeDstPath,
                    std::optional<NSError>* error = nullptr);

inline constexpr std::string_view SecureRemoveErrorDomain =
    "com.orvane.Vornix.SecureRemoveErrorDomain";

// Unlocks an item, but not the folder around it, and removes it as `FileRemover` does, with what
// files hold overwritten and a folder with all that is in it; read there what that can promise and
// what not. On failure `error` gets an error of `SecureRemoveErrorDomain` with the program's own
// text for it; success leaves it as it is.
bool securelyRemoveFileAtPath(NSFileManager& self, std::string_view path,
                              std::optional<NSError>* error = nullptr,
                              FileRemover& remover = sharedFileRemover(),
                              const NSBundle& texts = NSBundle::mainBundle());

}  // namespace vornix
