#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/base/NSError.h"
#include "platform/files/NSFileManager.h"

namespace vornix {

inline constexpr std::string_view DirectoryLocationDomain = "DirectoryLocationDomain";

// The codes of that domain. Errors with them carry the kind under "NSSearchPathDirectory" and the
// mask under "NSSearchPathDomainMask".
namespace DirectoryLocationError {
inline constexpr std::int64_t NoPathFound = 0;
inline constexpr std::int64_t FileExistsAtLocation = 1;
}  // namespace DirectoryLocationError

// The first standard folder of that kind, or the component in it; made, with all above it, when it
// is missing. None when there is none, when something else stands there, and, with the file
// manager's own error, when it cannot be made. Success clears `error`.
[[nodiscard]] std::optional<std::string> findOrCreateDirectory(
    NSFileManager& self, NSSearchPathDirectory searchPathDirectory, NSSearchPathDomainMask inDomain,
    std::optional<std::string_view> appendPathComponent, std::optional<NSError>* error = nullptr);

// The folder of that name among the person's application support, made when it is missing. None,
// and a line in the log, when it cannot be made.
[[nodiscard]] std::optional<std::string> userApplicationSupportDirectoryWithAppName(
    NSFileManager& self, std::optional<std::string_view> appName);
// The same with the name of this program's executable, as the main bundle has it.
[[nodiscard]] std::optional<std::string> userApplicationSupportDirectory(NSFileManager& self);

// A new, empty folder of that name among the temporary files, open to its owner only. What stood
// there is removed. None, and a line in the log, when that fails, when the folder would be somebody
// else's, and for a name that leads out of the temporary folder or to itself.
[[nodiscard]] std::optional<std::string> temporaryDirectoryWithName(NSFileManager& self,
                                                                    std::string_view name);

}  // namespace vornix
