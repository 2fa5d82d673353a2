#include <tuple>

#include "platform/base/Diagnostics.h"
#include "platform/base/Format.h"
#include "platform/base/NSObject.h"
#include "platform/bindings/KeyPath.h"

namespace vornix {

std::shared_ptr<NSObject> NSObject::valueForKey(std::string_view key) {
  reportDiagnostic(text::format("%@ has no value for the key \"%@\"", description(), key));
  return nullptr;
}

void NSObject::setValueForKey(const std::shared_ptr<NSObject>& /*value*/, std::string_view key) {
  reportDiagnostic(text::format("%@ takes no value for the key \"%@\"", description(), key));
}

std::shared_ptr<NSObject> NSObject::valueForKeyPath(std::string_view keyPath) {
  auto [key, rest] = firstKey(keyPath);
  auto value = valueForKey(key);
  while (rest && value) {
    std::tie(key, rest) = firstKey(*rest);
    value = value->valueForKey(key);
  }
  return value;
}

void NSObject::setValueForKeyPath(const std::shared_ptr<NSObject>& value,
                                  std::string_view keyPath) {
  const auto lastPoint = keyPath.rfind(kKeyPathSeparator);
  if (lastPoint == std::string_view::npos) return setValueForKey(value, keyPath);
  if (const auto object = valueForKeyPath(keyPath.substr(0, lastPoint))) {
    object->setValueForKey(value, keyPath.substr(lastPoint + 1));
  }
}

}  // namespace vornix
