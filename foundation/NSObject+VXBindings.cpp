#include "foundation/NSObject+VXBindings.h"

#include <utility>

#include "logging/GTMLogger.h"
#include "platform/base/NSDictionary.h"
#include "platform/base/NSNull.h"
#include "platform/bindings/BindingInfo.h"
#include "platform/runloop/GuardedCall.h"

namespace vornix {
namespace {

constexpr const char* kPropagate = "-[NSObject(VXBindings) propagateValue:forBinding:]";

void logOf(std::string_view message, std::string_view binding) {
  GTMLogger::sharedLogger()->logDebug(message, binding, kPropagate);
}

std::shared_ptr<NSObject> reversed(std::shared_ptr<NSObject> value, const NSDictionary& info,
                                   std::string_view binding) {
  const auto options = std::dynamic_pointer_cast<NSDictionary>(info.objectForKey(NSOptionsKey));
  const auto transformer = options ? valueTransformerOfOptions(*options) : nullptr;
  if (!transformer) return value;
  if (transformer->allowsReverseTransformation())
    return transformer->reverseTransformedValue(value);
  logOf(
      "WARNING: binding \"%@\" has value transformer, but it doesn't allow reverse "
      "transformations in %s",
      binding);
  return value;
}

void write(std::shared_ptr<NSObject> value, const NSDictionary& info, std::string_view forBinding) {
  value = reversed(std::move(value), info, forBinding);
  const auto observed = objectUnlessNull(info.objectForKey(NSObservedObjectKey));
  if (!observed) {
    logOf("ERROR: NSObservedObjectKey was nil for binding \"%@\" in %s", forBinding);
    return;
  }
  const auto keyPath = objectUnlessNull(info.objectForKey(NSObservedKeyPathKey));
  if (!keyPath) {
    logOf("ERROR: NSObservedKeyPathKey was nil for binding \"%@\" in %s", forBinding);
    return;
  }
  observed->setValueForKeyPath(value, keyPath->description());
}

}  // namespace

void propagateValue(const std::shared_ptr<NSObject>& self, std::shared_ptr<NSObject> value,
                    std::string_view forBinding) {
  const auto info = self ? self->infoForBinding(forBinding) : nullptr;
  if (!info) return;
  callReportingExceptions([&] { write(std::move(value), *info, forBinding); },
                          "the other end of a binding");
}

void safeUnbind(const std::shared_ptr<NSObject>& self, std::string_view binding) {
  if (self && self->infoForBinding(binding)) self->unbind(binding);
}

}  // namespace vornix
