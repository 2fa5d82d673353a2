#pragma once

#include <sys/types.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <limits>
#include <string_view>

#include "platform/base/NSError.h"
#include "platform/linux/system/FileSignals.h"
#include "platform/system/NSFileHandle.h"

namespace vornix {

[[noreturn]] inline void throwFailure(std::string_view what, int errorNumber) {
  throw NSFileHandleOperationException(posixError(errorNumber, what).localizedDescription);
}

// Gives an open file that length and goes to its end, or throws.
inline void truncateAt(int descriptor, std::uint64_t offset) {
  const FileSignalsAsErrors guard;
  if (offset > static_cast<std::uint64_t>(std::numeric_limits<off_t>::max()))
    throwFailure("truncate", EFBIG);
  const auto length = static_cast<off_t>(offset);
  if (::ftruncate(descriptor, length) != 0 || ::lseek(descriptor, length, SEEK_SET) < 0)
    throwFailure("truncate", errno);
}

}  // namespace vornix
