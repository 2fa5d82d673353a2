#include "platform/bindings/NSValueTransformer.h"

#include <map>
#include <string>
#include <utility>

#include "platform/base/Diagnostics.h"
#include "platform/base/Format.h"
#include "platform/base/Mutex.h"

namespace vornix {
namespace {

class Registry {
 public:
  static Registry& shared() {
    static auto& registry = *new Registry;
    return registry;
  }

  void set(std::shared_ptr<NSValueTransformer> transformer, std::string_view name) {
    // The one replaced is released without the lock.
    const Lock lock(mutex_);
    std::swap(transformers_[std::string(name)], transformer);
  }

  [[nodiscard]] std::shared_ptr<NSValueTransformer> find(std::string_view name) const {
    const Lock lock(mutex_);
    const auto found = transformers_.find(name);
    return found == transformers_.end() ? nullptr : found->second;
  }

 private:
  mutable Mutex mutex_;
  std::map<std::string, std::shared_ptr<NSValueTransformer>, std::less<>> transformers_
      VORNIX_GUARDED_BY(mutex_);
};

}  // namespace

std::shared_ptr<NSObject> NSValueTransformer::reverseTransformedValue(
    const std::shared_ptr<NSObject>& value) {
  if (allowsReverseTransformation()) return transformedValue(value);
  reportDiagnostic(text::format("%@ allows no reverse transformation", description()));
  return nullptr;
}

void NSValueTransformer::setValueTransformer(std::shared_ptr<NSValueTransformer> transformer,
                                             std::string_view forName) {
  Registry::shared().set(std::move(transformer), forName);
}

std::shared_ptr<NSValueTransformer> NSValueTransformer::valueTransformerForName(
    std::string_view name) {
  return Registry::shared().find(name);
}

}  // namespace vornix
