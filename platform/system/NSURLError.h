#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/base/NSError.h"

namespace vornix {

// Codes of `NSURLErrorDomain`.
inline constexpr std::int64_t NSURLErrorUnknown = -1;
inline constexpr std::int64_t NSURLErrorBadURL = -1000;
inline constexpr std::int64_t NSURLErrorTimedOut = -1001;
inline constexpr std::int64_t NSURLErrorUnsupportedURL = -1002;
inline constexpr std::int64_t NSURLErrorCannotFindHost = -1003;
inline constexpr std::int64_t NSURLErrorCannotConnectToHost = -1004;
inline constexpr std::int64_t NSURLErrorNetworkConnectionLost = -1005;
inline constexpr std::int64_t NSURLErrorHTTPTooManyRedirects = -1007;
inline constexpr std::int64_t NSURLErrorBadServerResponse = -1011;
inline constexpr std::int64_t NSURLErrorDataLengthExceedsMaximum = -1103;
inline constexpr std::int64_t NSURLErrorSecureConnectionFailed = -1200;
inline constexpr std::int64_t NSURLErrorServerCertificateUntrusted = -1202;

[[nodiscard]] NSError urlError(std::int64_t code, std::string_view description);

// Whether `text` is made of characters that may stand in a URL: no white space, no character
// outside ASCII, no quotation mark, none of <>\^`{|}, a "%" only before two hexadecimal digits,
// and at most one "#". The empty text is none.
[[nodiscard]] bool isUrlText(std::string_view text);

}  // namespace vornix
