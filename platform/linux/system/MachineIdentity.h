#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vornix {

using Id128 = std::array<std::uint8_t, 16>;

// 32 hexadecimal digits in either case, with or without the four hyphens of a UUID; none for
// any other text and for the id that is all zeros or all ones.
[[nodiscard]] std::optional<Id128> parseId128(std::string_view text);

// 32 lower-case hexadecimal digits.
[[nodiscard]] std::string hexadecimal(const Id128& id);

// An id of this machine that only this system sees, from which the machine id cannot be told:
// HMAC-SHA256 of the application's id under the machine id, cut to 16 bytes and marked as a random
// UUID. The same that systemd derives for an application.
[[nodiscard]] Id128 applicationSpecificId(const Id128& machine);

// Whether a firmware text is one of those that makers leave in place of a value.
[[nodiscard]] bool isFirmwarePlaceholder(std::string_view text);

// Whether an id is one of those that makers put into every board alike.
[[nodiscard]] bool isFirmwarePlaceholder(const Id128& id);

}  // namespace vornix
