#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace vornix {

// Kinds of standard folders. No folder is known of any other kind.
using NSSearchPathDirectory = std::uint32_t;
inline constexpr NSSearchPathDirectory NSLibraryDirectory = 5;
inline constexpr NSSearchPathDirectory NSCachesDirectory = 13;
inline constexpr NSSearchPathDirectory NSApplicationSupportDirectory = 14;
inline constexpr NSSearchPathDirectory NSDownloadsDirectory = 15;

// Whose folders: the person's, or the machine's for everyone. There are none of any other domain.
using NSSearchPathDomainMask = std::uint32_t;
inline constexpr NSSearchPathDomainMask NSUserDomainMask = 1;
inline constexpr NSSearchPathDomainMask NSLocalDomainMask = 2;

// Where the system keeps what, for the account of this process. Nothing is said about whether a
// folder exists. Any thread.
class StandardDirectories {
 public:
  virtual ~StandardDirectories() = default;

  // Absolute, without a slash at the end.
  [[nodiscard]] virtual std::string homeDirectory() const = 0;
  // The same of an account, by its name; none where there is no such account.
  [[nodiscard]] virtual std::optional<std::string> homeDirectoryForUser(
      std::string_view user) const = 0;
  // Absolute, with a slash at the end.
  [[nodiscard]] virtual std::string temporaryDirectory() const = 0;
  // Absolute paths without a slash at the end, the person's first. The first search for the
  // person's library makes it, if the home has none.
  [[nodiscard]] virtual std::vector<std::string> directories(
      NSSearchPathDirectory kind, NSSearchPathDomainMask domains) const = 0;
  // A text of the system's configuration, with a zero byte at its end, cut to the buffer. Answers
  // the length of the whole with that byte; 0 where the system knows no such text.
  [[nodiscard]] virtual std::size_t confstr(int name, std::span<char> buffer) const = 0;
};

// The process's own, never destroyed.
[[nodiscard]] const StandardDirectories& sharedStandardDirectories();

}  // namespace vornix
