#pragma once

#include <optional>
#include <string>

namespace vornix::contract {

// What kind of file system a test wants to work on.
enum class KindOfVolume { ext4, tmpfs };

// A folder on such a file system in which this account may make others; none where this machine has
// none.
[[nodiscard]] std::optional<std::string> folderOn(KindOfVolume kind);

// Whether files can be flagged immutable there, by this account and with this kernel.
[[nodiscard]] bool keepsFlags(KindOfVolume kind);

inline constexpr const char* kMayNotFlag =
    "NOT TESTED: this account may flag nothing immutable, or the kernel has no such flag there";

[[nodiscard]] std::string nameOf(KindOfVolume kind);

}  // namespace vornix::contract

#define VORNIX_NEED_VOLUME(kind)                       \
  if (!::vornix::contract::folderOn(kind).has_value()) \
  GTEST_SKIP() << "NOT TESTED: no folder to write to on " << ::vornix::contract::nameOf(kind)
