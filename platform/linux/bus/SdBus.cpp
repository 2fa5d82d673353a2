#include "platform/linux/bus/SdBus.h"

#include <optional>

#include "platform/base/Mutex.h"
#include "platform/linux/system/SharedLibrary.h"

namespace vornix {
namespace {

std::optional<SdBus> load(std::string* why) {
  const auto library = SharedLibrary::open("libsystemd.so.0", why);
  if (!library) {
    return std::nullopt;
  }
  SdBus functions;
#define VORNIX_AND_BIND(function) &&library->bind(functions.function, #function, why)
  if (!(true VORNIX_SD_BUS_FUNCTIONS(VORNIX_AND_BIND))) {
    return std::nullopt;
  }
#undef VORNIX_AND_BIND
  functions.vtableFormat =
      static_cast<const unsigned*>(library->symbol("sd_bus_object_vtable_format"));
  return functions;
}

std::optional<SdBus>& loaded() {
  static auto& shared = *new std::optional<SdBus>;
  return shared;
}

}  // namespace

const SdBus* loadSdBus(std::string* why) {
  static Mutex mutex;
  const Lock lock(mutex);
  if (!loaded()) {
    loaded() = load(why);
  }
  return loaded() ? &*loaded() : nullptr;
}

const SdBus& sdBus() {
  return *loaded();
}  // NOLINT(bugprone-unchecked-optional-access)

}  // namespace vornix
