#include "tools/ctl/LocationOutput.h"

#include <algorithm>
#include <cstddef>
#include <vector>

#include "platform/base/Format.h"
#include "platform/base/Text.h"
#include "platform/base/Utf8.h"
#include "tools/ctl/JsonText.h"

namespace vornix::tools {
namespace {

constexpr std::string_view kNameHeading = "NAME";
constexpr std::string_view kPathHeading = "PATH";

bool isBetween(char32_t character, char32_t first, char32_t last) {
  return first <= character && character <= last;
}

// What controls a terminal, ends a line or turns the direction of the text could play tricks.
bool isControl(char32_t character) {
  return character < 0x20 || isBetween(character, 0x7F, 0x9F) ||
         isBetween(character, 0x2028, 0x202E) || isBetween(character, 0x2066, 0x2069);
}

bool canBeShown(const text::DecodedCharacter& character, std::string_view bytes) {
  return character.wellFormed && !isControl(character.codePoint) && text::isValidUtf8(bytes);
}

std::string shown(std::string_view path) {
  std::string result;
  while (!path.empty()) {
    const auto character = text::decodeCharacter(path);
    const auto bytes = path.substr(0, character.length);
    path.remove_prefix(character.length);
    if (bytes == "\\") {
      result += "\\\\";
    } else if (canBeShown(character, bytes)) {
      result += bytes;
    } else {
      for (const char byte : bytes) {
        result += text::format("\\x%02x", static_cast<unsigned char>(byte));
      }
    }
  }
  return result;
}

// In characters; combining ones count, so a column may be a little wide.
std::size_t widthOf(std::string_view text) {
  return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U;
  }));
}

struct Line {
  std::string name;
  std::string path;
  std::string_view exists;
};

std::vector<Line> linesOf(std::span<const Location> locations) {
  std::vector<Line> lines{{std::string(kNameHeading), std::string(kPathHeading), "EXISTS"}};
  for (const auto& location : locations) {
    lines.push_back({std::string(location.name), location.path ? shown(*location.path) : "-",
                     location.exists ? "yes" : "no"});
  }
  return lines;
}

}  // namespace

std::string locationTable(std::span<const Location> locations) {
  const auto lines = linesOf(locations);
  std::size_t nameWidth = 0;
  std::size_t pathWidth = 0;
  for (const auto& line : lines) {
    nameWidth = std::max(nameWidth, widthOf(line.name));
    pathWidth = std::max(pathWidth, widthOf(line.path));
  }
  std::string table;
  for (const auto& line : lines) {
    table.append(line.name).append(nameWidth - widthOf(line.name) + 2, ' ');
    table.append(line.path).append(pathWidth - widthOf(line.path) + 2, ' ');
    table.append(line.exists).append("\n");
  }
  return table;
}

std::string locationsAsJson(std::span<const Location> locations) {
  std::string json = "[";
  for (const auto& location : locations) {
    json += json.size() == 1 ? "\n" : ",\n";
    json += "  {\"name\": " + jsonString(location.name) +
            ", \"path\": " + (location.path ? jsonPath(*location.path) : "null") +
            ", \"exists\": " + (location.exists ? "true" : "false") + "}";
  }
  return json + "\n]\n";
}

}  // namespace vornix::tools
