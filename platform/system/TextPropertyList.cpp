#include "platform/system/TextPropertyList.h"

#include <algorithm>
#include <utility>

#include "platform/base/Text.h"
#include "platform/base/Utf8.h"

namespace vornix {
namespace {

constexpr int kDeepest = 64;

bool isBlank(char character) {
  return character == ' ' || (character >= '\t' && character <= '\r');
}

bool isWordCharacter(char character) {
  return text::isAsciiLetterOrDigit(character) || static_cast<unsigned char>(character) >= 0x80 ||
         std::string_view("_-.$:/+@").find(character) != std::string_view::npos;
}

int digitValue(char character) {
  if (text::isAsciiDigit(character)) return character - '0';
  if (character >= 'a' && character <= 'f') return character - 'a' + 10;
  if (character >= 'A' && character <= 'F') return character - 'A' + 10;
  return 16;
}

bool isHighSurrogate(char32_t unit) {
  return unit >= 0xD800 && unit < 0xDC00;
}
bool isLowSurrogate(char32_t unit) {
  return unit >= 0xDC00 && unit < 0xE000;
}

}  // namespace

std::optional<Value> parseTextPropertyList(std::string_view text) {
  TextPropertyListReader reader(text);
  auto value = reader.readValue();
  reader.skipBlanks();
  return reader.isAtEnd() ? value : std::nullopt;
}

void TextPropertyListReader::skipBlanks() {
  while (!isAtEnd()) {
    const std::string_view rest = text_.substr(position_);
    if (isBlank(rest.front())) {
      ++position_;
    } else if (rest.starts_with("//")) {
      position_ += std::min(rest.find_first_of("\r\n"), rest.size());
    } else if (rest.starts_with("/*")) {
      const std::size_t end = rest.find("*/", 2);
      position_ += end == std::string_view::npos ? rest.size() : end + 2;
    } else {
      return;
    }
  }
}

bool TextPropertyListReader::take(char character) {
  skipBlanks();
  if (isAtEnd() || text_[position_] != character) return false;
  ++position_;
  return true;
}

void TextPropertyListReader::skipBehind(char character) {
  const std::size_t found = text_.find(character, position_);
  position_ = found == std::string_view::npos ? text_.size() : found + 1;
}

std::optional<std::string> TextPropertyListReader::readText() {
  if (take('"')) return readQuoted('"');
  if (take('\'')) return readQuoted('\'');
  const std::size_t start = position_;
  while (!isAtEnd() && isWordCharacter(text_[position_])) ++position_;
  if (position_ == start) return std::nullopt;
  return std::string(text_.substr(start, position_ - start));
}

std::string TextPropertyListReader::readQuoted(char quote) {
  std::string result;
  while (!isAtEnd()) {
    const char character = text_[position_++];
    if (character == quote) break;
    if (character == '\\' && !isAtEnd()) {
      readEscape(result);
    } else {
      result.push_back(character);
    }
  }
  return result;
}

void TextPropertyListReader::readEscape(std::string& result) {
  constexpr std::string_view kLetters = "abfnrtv";
  constexpr std::string_view kMeanings = "\a\b\f\n\r\t\v";
  const char letter = text_[position_];
  if (digitValue(letter) < 8) {
    text::appendCharacter(result, readDigits(3, 8));
    return;
  }
  ++position_;
  if (letter == 'U' || letter == 'u') {
    char32_t character = readDigits(4, 16);
    if (isHighSurrogate(character) &&
        (text_.substr(position_, 2) == "\\U" || text_.substr(position_, 2) == "\\u")) {
      const std::size_t before = std::exchange(position_, position_ + 2);
      const char32_t low = readDigits(4, 16);
      if (isLowSurrogate(low)) {
        character = 0x10000 + ((character - 0xD800) << 10) + (low - 0xDC00);
      } else {
        position_ = before;
      }
    }
    text::appendCharacter(result, character);
    return;
  }
  const std::size_t known = kLetters.find(letter);
  result.push_back(known == std::string_view::npos ? letter : kMeanings[known]);
}

char32_t TextPropertyListReader::readDigits(int maximum, int base) {
  char32_t number = 0;
  for (int count = 0; count < maximum && !isAtEnd(); ++count) {
    const int digit = digitValue(text_[position_]);
    if (digit >= base) break;
    number = number * static_cast<char32_t>(base) + static_cast<char32_t>(digit);
    ++position_;
  }
  return number;
}

std::optional<Value> TextPropertyListReader::readValue(int depth) {
  if (depth > kDeepest) return std::nullopt;
  if (take('(')) return readArray(depth);
  if (take('{')) return readDictionary(depth);
  if (take('<')) return readData();
  if (auto text = readText()) return Value(std::move(*text));
  return std::nullopt;
}

std::optional<Value> TextPropertyListReader::readArray(int depth) {
  Array array;
  while (!take(')')) {
    auto element = readValue(depth + 1);
    if (!element) return std::nullopt;
    array.push_back(std::move(*element));
    if (take(',')) continue;
    if (take(')')) break;
    return std::nullopt;
  }
  return Value(std::move(array));
}

std::optional<Value> TextPropertyListReader::readDictionary(int depth) {
  Dictionary dictionary;
  while (!take('}')) {
    const auto key = readText();
    if (!key) return std::nullopt;
    std::optional<Value> value(*key);
    if (take('=')) value = readValue(depth + 1);
    if (!value) return std::nullopt;
    dictionary.set(*key, std::move(*value));
    if (take(';')) continue;
    if (take('}')) break;
    return std::nullopt;
  }
  return Value(std::move(dictionary));
}

std::optional<Value> TextPropertyListReader::readData() {
  Data data;
  while (!take('>')) {
    if (position_ + 1 >= text_.size()) return std::nullopt;
    const int high = digitValue(text_[position_]);
    const int low = digitValue(text_[position_ + 1]);
    if (high > 15 || low > 15) return std::nullopt;
    data.push_back(static_cast<std::byte>(high * 16 + low));
    position_ += 2;
  }
  return Value(std::move(data));
}

}  // namespace vornix
