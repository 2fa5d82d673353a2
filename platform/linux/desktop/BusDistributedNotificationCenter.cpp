#include "platform/linux/desktop/BusDistributedNotificationCenter.h"

#include <string>

#include "platform/base/Diagnostics.h"
#include "platform/base/FileUrl.h"
#include "platform/base/Text.h"
#include "platform/base/Utf8.h"

namespace vornix {
namespace {

constexpr const char* kPath = "/com/orvane/DistributedNotificationCenter";
constexpr const char* kInterface = "com.orvane.DistributedNotificationCenter";

// The bus library refuses a whole message for one of these, well-formed though they are.
bool isNoncharacter(char32_t codePoint) {
  return (codePoint >= 0xFDD0 && codePoint <= 0xFDEF) || (codePoint & 0xFFFEU) == 0xFFFEU;
}

bool canBeSentAsText(std::string_view path) {
  if (!text::isValidUtf8(path)) return false;
  while (!path.empty()) {
    const text::DecodedCharacter character = text::decodeCharacter(path);
    if (isNoncharacter(character.codePoint)) return false;
    path.remove_prefix(character.length);
  }
  return true;
}

// The bus carries texts; a path may be any bytes, and a relative one, too.
Value withSendablePaths(const Value& value) {
  const auto* paths = value.as<Array>();
  if (paths == nullptr) {
    return value;
  }
  Array sendable;
  for (const Value& path : *paths) {
    const auto* text = path.as<std::string>();
    const bool isSendable = text == nullptr || canBeSentAsText(*text);
    sendable.push_back(isSendable ? path : Value("file://" + text::percentEscapedPath(*text)));
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
