#pragma once

#include <memory>

#include "platform/base/NSObject.h"

namespace vornix {

// Equality of objects of which either may be missing: two missing ones are equal, a missing one
// equals no object, two objects are asked with `isEqual`.
[[nodiscard]] bool isEqualObject(const std::shared_ptr<NSObject>& object,
                                 const std::shared_ptr<NSObject>& toObject);

}  // namespace vornix
