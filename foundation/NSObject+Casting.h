#pragma once

#include <concepts>
#include <memory>
#include <utility>

#include "platform/base/NSObject.h"

namespace vornix {

// The same object under the type that the caller knows it to have. Nothing is checked; null stays
// null.
template <std::derived_from<NSObject> Class, std::derived_from<NSObject> Object>
[[nodiscard]] std::shared_ptr<Class> castObject(std::shared_ptr<Object> object) {
  return std::static_pointer_cast<Class>(std::move(object));
}

// The same object when it is of the class or of one derived from it, else null.
template <std::derived_from<NSObject> Class, std::derived_from<NSObject> Object>
[[nodiscard]] std::shared_ptr<Class> dynamicCastObject(const std::shared_ptr<Object>& object) {
  return std::dynamic_pointer_cast<Class>(object);
}

}  // namespace vornix
