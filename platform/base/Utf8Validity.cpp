#include "platform/base/Text.h"
#include "platform/base/Utf8Machine.h"

namespace vornix::text {
namespace {

std::uint64_t stateAfter(std::uint64_t state, std::string_view bytes) {
  for (const char byte : bytes) state = utf8Step(state, byte);
  return utf8StateOf(state);
}

}  // namespace

bool isValidUtf8(std::string_view bytes) {
  std::uint64_t state = kUtf8Accepting;
  while (bytes.size() >= kAsciiBlock) {
    const bool isPlain = state == kUtf8Accepting && isAsciiBlock(bytes.data());
    if (!isPlain) state = stateAfter(state, bytes.substr(0, kAsciiBlock));
    bytes.remove_prefix(kAsciiBlock);
  }
  return stateAfter(state, bytes) == kUtf8Accepting;
}

}  // namespace vornix::text
