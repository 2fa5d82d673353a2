#include <algorithm>
#include <utility>

#include "platform/base/Diagnostics.h"
#include "platform/base/Format.h"
#include "platform/base/NSDictionary.h"
#include "platform/base/NSObjectState.h"
#include "platform/bindings/KeyValueBinding.h"

namespace vornix {

void NSObject::bind(std::string_view binding, const std::shared_ptr<NSObject>& toObject,
                    std::string_view withKeyPath, std::shared_ptr<NSDictionary> options) {
  const auto self = weak_from_this().lock();
  if (!self || !toObject) {
    reportDiagnostic(text::format("The binding \"%@\" of %@ has no object at %@ end", binding,
                                  description(), toObject ? "its own" : "the other"));
    return;
  }
  unbind(binding);
  const auto made =
      std::make_shared<KeyValueBinding>(binding, toObject, withKeyPath, std::move(options));
  state().bindings.emplace_back(binding, made);
  made->start(self);
}

void NSObject::unbind(std::string_view binding) {
  if (!state_) return;
  auto& bindings = state_->bindings;
  const auto found =
      std::ranges::find_if(bindings, [&](const auto& bound) { return bound.first == binding; });
  if (found == bindings.end()) return;
  // Released last: the observed object may go with it, and come back here.
  const auto ended = std::move(found->second);
  bindings.erase(found);
  ended->stop();
}

std::shared_ptr<NSDictionary> NSObject::infoForBinding(std::string_view binding) {
  if (!state_) return nullptr;
  const auto& bindings = state_->bindings;
  const auto found =
      std::ranges::find_if(bindings, [&](const auto& bound) { return bound.first == binding; });
  return found == bindings.end() ? nullptr : found->second->info();
}

}  // namespace vornix
