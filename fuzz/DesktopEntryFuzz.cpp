#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "platform/linux/desktop/applications/ExecLine.h"
#include "platform/linux/desktop/applications/KeyFile.h"

// Desktop entries of other programs are read, or refused.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace vornix::desktop;
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  static_cast<void>(fixedWordsOfExec(text));
  const KeyFile file = KeyFile::parse(text);
  static_cast<void>(file.localizedString("Desktop Entry", "Name", "de_DE.UTF-8@euro"));
  return 0;
}
