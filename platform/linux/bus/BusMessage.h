#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/base/Value.h"

struct sd_bus_message;

namespace vornix {

// One message of the session bus, written in order or read in order. Owns its share of it. A text
// that the bus cannot carry (not UTF-8, or with a zero byte) makes the message invalid; sending an
// invalid message fails. Main thread.
class BusMessage {
 public:
  BusMessage() = default;
  // Takes over the reference.
  explicit BusMessage(sd_bus_message* message) : message_(message) {}
  // Adds a reference of its own.
  [[nodiscard]] static BusMessage sharing(sd_bus_message* message);
  BusMessage(BusMessage&& other) noexcept;
  BusMessage& operator=(BusMessage&& other) noexcept;
  BusMessage(const BusMessage&) = delete;
  BusMessage& operator=(const BusMessage&) = delete;
  ~BusMessage();

  [[nodiscard]] sd_bus_message* get() const { return message_; }
  [[nodiscard]] bool isValid() const { return message_ != nullptr && failure_ == 0; }
  // Error number of the first thing that could not be written; 0 when there is none.
  [[nodiscard]] int failure() const { return failure_; }

  // Empty when the message carries none.
  [[nodiscard]] std::string sender() const;
  [[nodiscard]] std::string member() const;

  void writeString(std::string_view text);
  void writeBool(bool value);
  void writeByte(std::uint8_t value);
  void writeInt32(std::int32_t value);
  void writeUint32(std::uint32_t value);
  void writeUint64(std::uint64_t value);
  void writeStrings(const std::vector<std::string>& texts);
  // `type`: 'a' array, 'r' struct, 'e' dictionary entry, 'v' variant.
  void open(char type, const char* contents);
  void close();
  // "a{sv}". An array becomes "as" of its texts, a date seconds since 1970; data and null are left
  // out.
  void writeDictionary(const Dictionary& dictionary);
  void writeVariantString(std::string_view text);

  // None, and nothing is consumed, when something else comes next. `readString` takes object paths
  // and signatures too.
  [[nodiscard]] std::optional<std::string> readString();
  [[nodiscard]] std::optional<bool> readBool();
  [[nodiscard]] std::optional<std::int32_t> readInt32();
  [[nodiscard]] std::optional<std::uint32_t> readUint32();
  [[nodiscard]] std::optional<std::vector<std::string>> readStrings();
  // Values of types that a property list has no counterpart for are left out.
  [[nodiscard]] std::optional<Dictionary> readDictionary();
  // The value in a variant; null for a type without counterpart.
  [[nodiscard]] std::optional<Value> readVariant();
  // False when no such container comes next.
  [[nodiscard]] bool enter(char type, const char* contents);
  void leave();
  [[nodiscard]] bool atEnd() const;

 private:
  template <typename T>
  std::optional<T> readBasic(char type);
  std::optional<Value> readNumber(char type);
  void writeBasic(char type, const void* value);
  void writeVariant(const Value& value);
  void note(int result);

  sd_bus_message* message_ = nullptr;
  int failure_ = 0;
};

}  // namespace vornix
