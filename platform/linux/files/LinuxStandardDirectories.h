#pragma once

#include <string>
#include <vector>

#include "platform/base/Mutex.h"
#include "platform/files/StandardDirectories.h"
#include "platform/system/NSProcessInfo.h"

namespace vornix {

// The library as it stands; all else where the desktop's base directories are. Values of the
// environment that are no absolute paths do not count.
class LinuxStandardDirectories final : public StandardDirectories {
 public:
  // `process` must outlive it.
  explicit LinuxStandardDirectories(const NSProcessInfo& process) : process_(process) {}

  [[nodiscard]] std::string homeDirectory() const override;
  [[nodiscard]] std::optional<std::string> homeDirectoryForUser(
      std::string_view user) const override;
  [[nodiscard]] std::string temporaryDirectory() const override;
  [[nodiscard]] std::vector<std::string> directories(NSSearchPathDirectory kind,
                                                     NSSearchPathDomainMask domains) const override;
  [[nodiscard]] std::size_t confstr(int name, std::span<char> buffer) const override;

 private:
  [[nodiscard]] std::optional<std::string> absoluteVariable(std::string_view name) const;
  [[nodiscard]] std::string baseDirectory(std::string_view variable, std::string_view inHome) const;
  [[nodiscard]] std::string library() const;
  [[nodiscard]] std::string downloads() const;

  const NSProcessInfo& process_;
  mutable Mutex mutex_;
  // The home that is known to have its library.
  mutable std::string preparedHome_ VORNIX_GUARDED_BY(mutex_);
};

}  // namespace vornix
