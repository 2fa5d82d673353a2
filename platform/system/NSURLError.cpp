#include "platform/system/NSURLError.h"

#include <algorithm>

namespace vornix {
namespace {

bool isHexadecimal(char character) {
  return (character >= '0' && character <= '9') || (character >= 'a' && character <= 'f') ||
         (character >= 'A' && character <= 'F');
}

bool mayStand(char character) {
  constexpr std::string_view excluded = "\"<>\\^`{|}";
  return character > ' ' && character < '\x7f' && excluded.find(character) == excluded.npos;
}

bool escapesAreWhole(std::string_view text) {
  for (auto at = text.find('%'); at != text.npos; at = text.find('%', at + 1)) {
    if (at + 2 >= text.size() || !isHexadecimal(text[at + 1]) || !isHexadecimal(text[at + 2])) {
      return false;
    }
  }
  return true;
}

}  // namespace

NSError urlError(std::int64_t code, std::string_view description) {
  return {.domain = std::string(NSURLErrorDomain),
          .code = code,
          .localizedDescription = std::string(description)};
}

bool isUrlText(std::string_view text) {
  return !text.empty() && std::ranges::all_of(text, mayStand) && escapesAreWhole(text) &&
         std::ranges::count(text, '#') <= 1;
}

}  // namespace vornix
