#pragma once

#include <memory>
#include <string_view>

#include "platform/base/NSObject.h"

namespace vornix {

// Writes the value back to what the receiver's binding observes, through the binding's value
// transformer in reverse. A transformer that allows no reverse is left out and logged; a binding
// that says not what it observes is logged, and nothing written. Without a receiver, or such a
// binding, nothing happens. On the thread that may change the observed object.
void propagateValue(const std::shared_ptr<NSObject>& self, std::shared_ptr<NSObject> value,
                    std::string_view forBinding);

// Ends the receiver's binding if there is one.
void safeUnbind(const std::shared_ptr<NSObject>& self, std::string_view binding);

}  // namespace vornix
