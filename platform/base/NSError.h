#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/base/Value.h"

namespace vornix {

// Why an operation failed. Returned or handed to an out-parameter, never thrown.
struct NSError {
  std::string domain{};
  std::int64_t code = 0;
  std::string localizedDescription{};
  // The path concerned; empty when there is none.
  std::string filePath{};
  // The system's error number behind it; 0 when there is none.
  int underlyingErrno = 0;
  // What else belongs to it, by name.
  Dictionary userInfo{};

  [[nodiscard]] std::string description() const;
  friend bool operator==(const NSError&, const NSError&) = default;
};

inline constexpr std::string_view NSCocoaErrorDomain = "NSCocoaErrorDomain";
inline constexpr std::string_view NSPOSIXErrorDomain = "NSPOSIXErrorDomain";
inline constexpr std::string_view NSURLErrorDomain = "NSURLErrorDomain";

// An error of the system's own: `NSPOSIXErrorDomain`, the number, and `what` before its text.
[[nodiscard]] NSError posixError(int errorNumber, std::string_view what);

}  // namespace vornix
