#include "foundation/NSObject+Equation.h"

namespace vornix {

bool isEqualObject(const std::shared_ptr<NSObject>& object,
                   const std::shared_ptr<NSObject>& toObject) {
  if (object == toObject) return true;
  return object && toObject && object->isEqual(*toObject);
}

}  // namespace vornix
