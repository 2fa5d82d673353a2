#include "platform/linux/desktop/BusDistributedNotificationCenter.h"

#include <string>

#include "platform/base/Diagnostics.h"
#include "platform/base/Text.h"
#include "platform/base/Utf8.h"

namespace vornix {
namespace {

constexpr const char* kPath = "/com/orvane/DistributedNotificationCenter";
constexpr const char* kInterface = "com.orvane.DistributedNotificationCenter";

bool standsForItselfInUrl(unsigned char byte) {
  return (byte >= '0' && byte <= '9') || (byte >= 'A' && byte <= 'Z') ||
         (byte >= 'a' && byte <= 'z') ||
         std::string_view("/-._~").find(static_cast<char>(byte)) != std::string_view::npos;
}

std::string fileUrl(std::string_view path) {
  static constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string url = "file://";
  for (const char character : path) {
    const auto byte = static_cast<unsigned char>(character);
    if (standsForItselfInUrl(byte)) {
      url += character;
    } else {
      url += '%';
      url += kDigits[byte >> 4];
      url += kDigits[byte & 15];
    }
  }
  return url;
}

// The bus library refuses a whole message for one of these, well-formed though they are.
bool isNoncharacter(char32_t codePoint) {
  return (codePoint >= 0xFDD0 && codePoint <= 0xFDEF) || (codePoint & 0xFFFEU) == 0xFFFEU;
}

bool canBeSent(std::string_view path) {
  if (!text::isValidUtf8(path)) return false;
  while (!path.empty()) {
    const text::DecodedCharacter character = text::decodeCharacter(path);
    if (isNoncharacter(character.codePoint)) return false;
    path.remove_prefix(character.length);
  }
  return true;
}

// The bus carries texts; a path may be any bytes.
Value withSendablePaths(const Value& value) {
  const auto* paths = value.as<Array>();
  if (paths == nullptr) {
    return value;
  }
  Array sendable;
  for (const Value& path : *paths) {
    const auto* text = path.as<std::string>();
    sendable.push_back(text != nullptr && !canBeSent(*text) ? Value(fileUrl(*text)) : path);
  }
  return sendable;
}

}  // namespace

// A signal of the bus is never held back, so `deliverImmediately` has nothing to add.
void BusDistributedNotificationCenter::postNotificationName(std::string_view name,
                                                            std::string_view object,
                                                            const Dictionary& userInfo,
                                                            bool /*deliverImmediately*/) {
  Dictionary sendable;
  for (const auto& [key, value] : userInfo) {
    sendable.set(key, withSendablePaths(value));
  }
  const auto error = bus_.emitSignal(kPath, kInterface, "Posted", [&](BusMessage& signal) {
    signal.writeString(name);
    signal.writeString(object);
    signal.writeDictionary(sendable);
  });
  if (error) {
    reportDiagnostic("The announcement " + std::string(name) +
                     " reaches nobody: " + error->message);
    return;
  }
  bus_.flush();
}

NSDistributedNotificationCenter& NSDistributedNotificationCenter::defaultCenter() {
  static auto& center = *new BusDistributedNotificationCenter(SessionBus::shared());
  return center;
}

}  // namespace vornix
