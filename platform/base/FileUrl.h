#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace vornix::text {

// "file://" and the absolute path, any byte that is no plain letter as its escape; a folder's ends
// with a slash. None for a path that is empty or not absolute.
[[nodiscard]] std::optional<std::string> fileUrlWithPath(std::string_view path, bool isDirectory);

// The path with any byte that is no plain letter as its escape: what follows the scheme of its URL.
[[nodiscard]] std::string percentEscapedPath(std::string_view path);

// The path that such a URL stands for, without a slash at its end. None for any other URL, one that
// names another host, and one with a broken escape or a zero byte.
[[nodiscard]] std::optional<std::string> pathOfFileUrl(std::string_view url);

}  // namespace vornix::text
