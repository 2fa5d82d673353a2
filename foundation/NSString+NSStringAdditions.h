#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/files/NSFileManager.h"
#include "platform/files/Volumes.h"
#include "platform/text/NSCharacterSet.h"

// Small operations on texts. What counts units counts UTF-16 units; ill-formed bytes count one unit
// each, match nothing and are kept.
namespace vornix {

// Whether the receiver, with a slash behind it, holds `path` with a slash behind it: at the start
// or further along. So a path is a subpath of itself, and every path with a slash is one of "/".
// Canonically equivalent names are equal. False for an empty `path` and for one that counts more
// units than the receiver.
[[nodiscard]] bool isSubpathOf(std::string_view self, std::string_view path);

// Without any space, line feed and "-_,.:;".
[[nodiscard]] std::string stringByRemovingSpaces(std::string_view self);

// With `substitute` in the place of every character of the set. The substitute is not searched.
[[nodiscard]] std::string stringWithSubstitute(std::string_view self, std::string_view substitute,
                                               const NSCharacterSet& forCharactersFromSet);

// Without white space and line ends at both ends.
[[nodiscard]] std::string trimWhiteSpace(std::string_view self);

// The first `n` of the pieces between spaces, all of them for a negative `n`. No ellipsis is added.
[[nodiscard]] std::string ellipsizeAfterNWords(std::string_view self, std::int32_t n);

// The text outside "<" and ">", one space for every outermost tag. A ">" too many drops what
// follows up to the next "<".
[[nodiscard]] std::string stripHTML(std::string_view self);

// True for a missing string and for one that is nothing but white space and line ends.
[[nodiscard]] bool stringIsEmpty(std::optional<std::string_view> string);

// Whether every character is a decimal digit, of any script; true for the empty string, false where
// a byte is ill-formed.
[[nodiscard]] bool isNumeric(std::string_view self);

// 0 when every word of the receiver, in whatever order and case, is a word of `other`, and `other`
// is not the receiver with a number behind it ("name 2"); else -1. Words stand between separators.
// The receiver is part of a regular expression as it stands: characters with a meaning there have
// it.
[[nodiscard]] int compareApplicationResourceNameByWords(std::string_view self,
                                                        std::string_view other,
                                                        std::string_view withSeparator);

// With the first UTF-16 unit in title case, which may be several characters ("Ss" for a sharp s).
[[nodiscard]] std::string stringWithCapitalizedFirstLetter(std::string_view self);

// The receiver with the characters escaped that may not stand in a URL, and with "%26" for every
// "&"; other reserved characters stay. None for a text that is not well-formed UTF-8.
[[nodiscard]] std::optional<std::string> vnx_stringEncodedAsURL(std::string_view self);

// The path of the volume that holds the item at this path, which is not followed when it is a link.
// None for what does not exist or cannot be reached. Any thread.
[[nodiscard]] std::optional<std::string> volumePath(std::string_view self,
                                                    const Volumes& volumes = sharedVolumes());

// The path without its extension, where it does not name an existing folder: bundles keep theirs.
// Such a folder's path is answered as it is. Any thread.
[[nodiscard]] std::string stringByDeletingRealPathExtension(
    std::string_view self, const NSFileManager& files = NSFileManager::defaultManager());

}  // namespace vornix
