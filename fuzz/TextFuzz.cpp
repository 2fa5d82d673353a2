#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "platform/base/Format.h"
#include "platform/base/Text.h"
#include "platform/system/StringsFile.h"

// No format and no file of texts crashes, whatever the arguments.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace vornix;
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  static_cast<void>(parseStringsFile(text));
  static_cast<void>(text::format(text, 5, "text", 0.5, std::string(text)));
  static_cast<void>(text::integerValue(text));
  static_cast<void>(text::doubleValue(text));
  return 0;
}
