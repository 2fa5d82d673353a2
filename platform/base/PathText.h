#pragma once

#include <string>
#include <string_view>

// Operations on paths as texts: "/" is the only separator, nothing looks at the disk.
namespace vornix::text {

// A view into `path`; "/" stays, "//" becomes it.
[[nodiscard]] std::string_view withoutTrailingSlashes(std::string_view path);
// "/tmp/scratch.tiff" gives "scratch.tiff", "/" gives "/", "a/b/" gives "b".
[[nodiscard]] std::string lastPathComponent(std::string_view path);
// Without the dot; empty when there is none. A name's first character never starts one.
[[nodiscard]] std::string pathExtension(std::string_view path);
[[nodiscard]] std::string deletingPathExtension(std::string_view path);
// "/tmp/scratch" gives "/tmp", "/tmp" gives "/", "scratch" gives the empty text.
[[nodiscard]] std::string deletingLastPathComponent(std::string_view path);
// Exactly one slash between the parts; "." and ".." stay as they are.
[[nodiscard]] std::string appendingPathComponent(std::string_view path, std::string_view component);

}  // namespace vornix::text
