#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/base/NSObject.h"

namespace vornix {

class KeyValueBinding;

// What others have attached to an object.
class NSObject::State {
 public:
  struct Observer {
    std::weak_ptr<NSObject> observer;
    const NSObject* identity;
    std::string keyPath;
    bool isRemoved = false;
  };

  // Shared, so that a delivery going on sees a removal.
  std::vector<std::shared_ptr<Observer>> observers;
  // By the name of the binding.
  std::vector<std::pair<std::string, std::shared_ptr<KeyValueBinding>>> bindings;
};

}  // namespace vornix
