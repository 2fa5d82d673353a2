#include "platform/linux/bus/BusMessage.h"

#include <cerrno>
#include <utility>

#include "platform/linux/bus/SdBus.h"

namespace vornix {
namespace {

std::string textOrEmpty(const char* text) {
  return text != nullptr ? text : "";
}

bool canBeSent(const Value& value) {
  return !value.is<Null>() && !value.is<Data>();
}

}  // namespace

BusMessage BusMessage::sharing(sd_bus_message* message) {
  return BusMessage(sdBus().sd_bus_message_ref(message));
}

BusMessage::BusMessage(BusMessage&& other) noexcept
    : message_(std::exchange(other.message_, nullptr)), failure_(other.failure_) {}

BusMessage& BusMessage::operator=(BusMessage&& other) noexcept {
  std::swap(message_, other.message_);
  std::swap(failure_, other.failure_);
  return *this;
}

BusMessage::~BusMessage() {
  if (message_ != nullptr) {
    sdBus().sd_bus_message_unref(message_);
  }
}

std::string BusMessage::sender() const {
  return textOrEmpty(sdBus().sd_bus_message_get_sender(message_));
}

std::string BusMessage::member() const {
  return textOrEmpty(sdBus().sd_bus_message_get_member(message_));
}

void BusMessage::note(int result) {
  if (result < 0 && failure_ == 0) {
    failure_ = -result;
  }
}

void BusMessage::writeBasic(char type, const void* value) {
  note(sdBus().sd_bus_message_append_basic(message_, type, value));
}

void BusMessage::writeString(std::string_view text) {
  if (text.find('\0') != std::string_view::npos) {
    note(-EINVAL);
    return;
  }
  writeBasic('s', std::string(text).c_str());
}

void BusMessage::writeBool(bool value) {
  const int number = value ? 1 : 0;
  writeBasic('b', &number);
}

void BusMessage::writeByte(std::uint8_t value) {
  writeBasic('y', &value);
}
void BusMessage::writeInt32(std::int32_t value) {
  writeBasic('i', &value);
}
void BusMessage::writeUint32(std::uint32_t value) {
  writeBasic('u', &value);
}
void BusMessage::writeUint64(std::uint64_t value) {
  writeBasic('t', &value);
}

void BusMessage::writeStrings(const std::vector<std::string>& texts) {
  open('a', "s");
  for (const std::string& text : texts) {
    writeString(text);
  }
  close();
}

void BusMessage::open(char type, const char* contents) {
  note(sdBus().sd_bus_message_open_container(message_, type, contents));
}

void BusMessage::close() {
  note(sdBus().sd_bus_message_close_container(message_));
}

void BusMessage::writeVariantString(std::string_view text) {
  open('v', "s");
  writeString(text);
  close();
}

void BusMessage::writeDictionary(const Dictionary& dictionary) {
  open('a', "{sv}");
  for (const auto& [key, value] : dictionary) {
    if (canBeSent(value)) {
      open('e', "sv");
      writeString(key);
      writeVariant(value);
      close();
    }
  }
  close();
}

void BusMessage::writeVariant(const Value& value) {
  if (const auto* text = value.as<std::string>()) {
    writeVariantString(*text);
  } else if (const auto* truth = value.as<bool>()) {
    open('v', "b");
    writeBool(*truth);
    close();
  } else if (const auto* integer = value.as<std::int64_t>()) {
    open('v', "x");
    writeBasic('x', integer);
    close();
  } else if (const auto* array = value.as<Array>()) {
    std::vector<std::string> texts;
    for (const Value& element : *array) {
      if (const auto* elementText = element.as<std::string>()) {
        texts.push_back(*elementText);
      }
    }
    open('v', "as");
    writeStrings(texts);
    close();
  } else if (const auto* dictionary = value.as<Dictionary>()) {
    open('v', "a{sv}");
    writeDictionary(*dictionary);
    close();
  } else {
    const auto* date = value.as<Date>();
    const double real = date != nullptr ? date->unixTime() : value.doubleValue();
    open('v', "d");
    writeBasic('d', &real);
    close();
  }
}

template <typename T>
std::optional<T> BusMessage::readBasic(char type) {
  char next = 0;
  T value{};
  if (sdBus().sd_bus_message_peek_type(message_, &next, nullptr) <= 0 || next != type ||
      sdBus().sd_bus_message_read_basic(message_, type, &value) <= 0) {
    return std::nullopt;
  }
  return value;
}

std::optional<std::string> BusMessage::readString() {
  for (const char type : {'s', 'o', 'g'}) {
    if (const auto text = readBasic<const char*>(type)) {
      return std::string(*text);
    }
  }
  return std::nullopt;
}

std::optional<bool> BusMessage::readBool() {
  const auto value = readBasic<int>('b');
  return value ? std::optional(*value != 0) : std::nullopt;
}

std::optional<std::int32_t> BusMessage::readInt32() {
  return readBasic<std::int32_t>('i');
}

std::optional<std::uint32_t> BusMessage::readUint32() {
  return readBasic<std::uint32_t>('u');
}

std::optional<std::vector<std::string>> BusMessage::readStrings() {
  if (!enter('a', "s")) {
    return std::nullopt;
  }
  std::vector<std::string> texts;
  while (auto text = readString()) {
    texts.push_back(std::move(*text));
  }
  leave();
  return texts;
}

std::optional<Dictionary> BusMessage::readDictionary() {
  if (!enter('a', "{sv}")) {
    return std::nullopt;
  }
  Dictionary dictionary;
  while (enter('e', "sv")) {
    const auto key = readString();
    auto value = readVariant();
    if (key && value && !value->is<Null>()) {
      dictionary.set(*key, std::move(*value));
    }
    leave();
  }
  leave();
  return dictionary;
}

std::optional<Value> BusMessage::readNumber(char type) {
  const auto asValue = [](const auto& number) -> std::optional<Value> {
    return number ? std::optional(Value(*number)) : std::nullopt;
  };
  switch (type) {
    case 'b':
      return asValue(readBool());
    case 'y':
      return asValue(readBasic<std::uint8_t>(type));
    case 'n':
      return asValue(readBasic<std::int16_t>(type));
    case 'q':
      return asValue(readBasic<std::uint16_t>(type));
    case 'i':
      return asValue(readBasic<std::int32_t>(type));
    case 'u':
      return asValue(readBasic<std::uint32_t>(type));
    case 'x':
      return asValue(readBasic<std::int64_t>(type));
    case 't':
      return asValue(readBasic<std::uint64_t>(type));
    case 'd':
      return asValue(readBasic<double>(type));
    default:
      return std::nullopt;
  }
}

std::optional<Value> BusMessage::readVariant() {
  char type = 0;
  const char* contents = nullptr;
  if (sdBus().sd_bus_message_peek_type(message_, &type, &contents) <= 0 || type != 'v') {
    return std::nullopt;
  }
  const std::string innerText = textOrEmpty(contents);
  if (!enter('v', innerText.c_str())) {
    return std::nullopt;
  }
  Value value = Null{};
  if (innerText == "as") {
    Array array;
    for (std::string& text : readStrings().value_or(std::vector<std::string>{})) {
      array.emplace_back(std::move(text));
    }
    value = std::move(array);
  } else if (innerText == "a{sv}") {
    value = readDictionary().value_or(Dictionary{});
  } else if (auto text = readString()) {
    value = std::move(*text);
  } else if (auto number = readNumber(innerText.front())) {
    value = std::move(*number);
  } else {
    note(sdBus().sd_bus_message_skip(message_, innerText.c_str()));
  }
  leave();
  return value;
}

bool BusMessage::enter(char type, const char* contents) {
  return sdBus().sd_bus_message_enter_container(message_, type, contents) > 0;
}

void BusMessage::leave() {
  note(sdBus().sd_bus_message_exit_container(message_));
}

bool BusMessage::atEnd() const {
  return sdBus().sd_bus_message_at_end(message_, 0) > 0;
}

}  // namespace vornix
