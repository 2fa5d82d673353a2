#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/base/NSObject.h"

namespace vornix {

// An open file. Any thread; each operation is whole by itself.
class NSFileHandle : public NSObject {
 public:
  // The process's own; never closed.
  [[nodiscard]] static std::shared_ptr<NSFileHandle> fileHandleWithStandardOutput();
  [[nodiscard]] static std::shared_ptr<NSFileHandle> fileHandleWithStandardError();
  // Write-only, appending, created with `mode` (low 16 bits) when missing. Null on failure. Never
  // blocks on a FIFO without a reader.
  [[nodiscard]] static std::shared_ptr<NSFileHandle> openForAppending(std::string_view path,
                                                                      std::uint32_t mode);

  // All of the bytes, short writes repeated. Throws `NSFileHandleOperationException` on failure.
  virtual void writeData(std::string_view bytes) = 0;

  [[nodiscard]] std::string_view className() const override { return "NSFileHandle"; }
};

}  // namespace vornix
