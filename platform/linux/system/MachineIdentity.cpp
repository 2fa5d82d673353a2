#include "platform/linux/system/MachineIdentity.h"

#include <sha256.h>

#include <algorithm>
#include <set>
#include <span>

#include "platform/base/Text.h"

namespace vornix {
namespace {

constexpr std::size_t digestLength = 32;
constexpr std::size_t blockLength = 64;
using Digest256 = std::array<std::uint8_t, digestLength>;
using Block = std::array<std::uint8_t, blockLength>;

constexpr Id128 applicationId{0x6f, 0x1c, 0x2b, 0x90, 0x5d, 0x3e, 0x4a, 0x77,
                              0x9b, 0x08, 0xd1, 0x46, 0xe2, 0x5f, 0xa3, 0xc8};

Digest256 sha256(std::span<const std::uint8_t> first, std::span<const std::uint8_t> second) {
  SHA2_CTX context{};
  SHA256Init(&context);
  SHA256Update(&context, first.data(), first.size());
  SHA256Update(&context, second.data(), second.size());
  Digest256 digest{};
  SHA256Final(digest.data(), &context);
  return digest;
}

Block paddedKey(const Id128& key, std::uint8_t pad) {
  Block block{};
  std::ranges::copy(key, block.begin());
  for (std::uint8_t& byte : block) {
    byte ^= pad;
  }
  return block;
}

Digest256 hmacSha256(const Id128& key, std::span<const std::uint8_t> message) {
  return sha256(paddedKey(key, 0x5c), sha256(paddedKey(key, 0x36), message));
}

int hexadecimalValue(char digit) {
  if (digit >= '0' && digit <= '9') {
    return digit - '0';
  }
  if (digit >= 'a' && digit <= 'f') {
    return digit - 'a' + 10;
  }
  return digit >= 'A' && digit <= 'F' ? digit - 'A' + 10 : -1;
}

bool hyphenBelongsAt(std::size_t index) {
  return index == 8 || index == 13 || index == 18 || index == 23;
}

// The digits of an id; empty when hyphens stand elsewhere than in a UUID.
std::string withoutHyphens(std::string_view text) {
  constexpr std::size_t uuidLength = 36;
  if (text.size() != uuidLength) {
    return std::string(text);
  }
  std::string digits;
  for (std::size_t index = 0; index < text.size(); ++index) {
    if ((text[index] == '-') != hyphenBelongsAt(index)) {
      return {};
    }
    if (text[index] != '-') {
      digits += text[index];
    }
  }
  return digits;
}

bool allBytesAre(const Id128& id, std::uint8_t byte) {
  return std::ranges::all_of(id, [byte](std::uint8_t each) { return each == byte; });
}

bool isPrintable(std::string_view text) {
  return std::ranges::all_of(text, [](char each) { return each >= ' ' && each != '\x7f'; });
}

// "0", "0000-0000", "XXXXXXXX", "..........".
bool repeatsOneCharacter(std::string_view text) {
  std::set<char> seen;
  for (const char each : text) {
    if (each != ' ' && each != '-' && each != '.' && each != '_' && each != ':' && each != '/') {
      seen.insert(each);
    }
  }
  return seen.size() < 2;
}

bool isKnownPlaceholder(std::string_view lowercase) {
  constexpr std::array known{
      "to be filled by o.e.m.",
      "to be filled by oem",
      "to be filled",
      "filled by oem",
      "default string",
      "default",
      "none",
      "null",
      "n/a",
      "na",
      "not specified",
      "not applicable",
      "not available",
      "not defined",
      "not present",
      "not settable",
      "not set",
      "no serial number",
      "unspecified",
      "unknown",
      "undefined",
      "invalid",
      "empty",
      "oem",
      "o.e.m.",
      "serial",
      "serial number",
      "serialnumber",
      "system serial number",
      "system-serial-number",
      "systemserialnumb",
      "chassis serial number",
      "base board serial number",
      "sernum",
      "sys-1234567890",
      "type2 - board serial number",
      "0123456789",
      "01234567",
      "012345678",
      "1234567",
      "12345678",
      "123456789",
      "1234567890",
      "123456",
      "0123456789abcdef",
      "0123456789123456789",
      "tbd",
  };
  return std::ranges::find(known, lowercase) != known.end();
}

}  // namespace

std::optional<Id128> parseId128(std::string_view text) {
  const std::string digits = withoutHyphens(text);
  Id128 id{};
  if (digits.size() != 2 * id.size()) {
    return std::nullopt;
  }
  for (std::size_t index = 0; index < id.size(); ++index) {
    const int high = hexadecimalValue(digits[2 * index]);
    const int low = hexadecimalValue(digits[2 * index + 1]);
    if (high < 0 || low < 0) {
      return std::nullopt;
    }
    id.at(index) = static_cast<std::uint8_t>(high * 16 + low);
  }
  return allBytesAre(id, 0x00) || allBytesAre(id, 0xff) ? std::nullopt : std::optional(id);
}

std::string hexadecimal(const Id128& id) {
  constexpr std::string_view digits = "0123456789abcdef";
  std::string text;
  for (const std::uint8_t byte : id) {
    text += digits[byte >> 4U];
    text += digits[byte & 15U];
  }
  return text;
}

Id128 applicationSpecificId(const Id128& machine) {
  const Digest256 digest = hmacSha256(machine, applicationId);
  Id128 id{};
  std::copy_n(digest.begin(), id.size(), id.begin());
  id[6] = static_cast<std::uint8_t>((id[6] & 0x0fU) | 0x40U);
  id[8] = static_cast<std::uint8_t>((id[8] & 0x3fU) | 0x80U);
  return id;
}

bool isFirmwarePlaceholder(std::string_view text) {
  const std::string_view trimmed = text::trim(text);
  return !isPrintable(trimmed) || repeatsOneCharacter(trimmed) ||
         isKnownPlaceholder(text::asciiLowercase(trimmed));
}

bool isFirmwarePlaceholder(const Id128& id) {
  constexpr std::array known{
      "03000200-0400-0500-0006-000700080009", "00020003-0004-0005-0006-000700080009",
      "12345678-1234-5678-90ab-cddeefaabbcc", "78563412-3412-7856-90ab-cddeefaabbcc",
      "00112233-4455-6677-8899-aabbccddeeff", "01234567-89ab-cdef-0123-456789abcdef",
      "12345678-9012-3456-7890-123456789012", "fefefefe-fefe-fefe-fefe-fefefefefefe"};
  return std::ranges::any_of(known, [&](const char* each) { return parseId128(each) == id; });
}

}  // namespace vornix
