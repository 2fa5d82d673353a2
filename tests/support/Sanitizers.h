#pragma once

// What slows this program down, for tests whose size has to mind it.
#if defined(__has_feature)
#define VORNIX_HAS_SANITIZER(name) __has_feature(name)
#else
#define VORNIX_HAS_SANITIZER(name) 0
#endif

namespace vornix::tests {

#if defined(__SANITIZE_THREAD__) || VORNIX_HAS_SANITIZER(thread_sanitizer)
inline constexpr bool kUnderThreadSanitizer = true;
#else
inline constexpr bool kUnderThreadSanitizer = false;
#endif

#if defined(__SANITIZE_ADDRESS__) || VORNIX_HAS_SANITIZER(address_sanitizer)
inline constexpr bool kUnderAddressSanitizer = true;
#else
inline constexpr bool kUnderAddressSanitizer = false;
#endif

inline constexpr bool kUnderSanitizer = kUnderThreadSanitizer || kUnderAddressSanitizer;

}  // namespace vornix::tests

#undef VORNIX_HAS_SANITIZER
