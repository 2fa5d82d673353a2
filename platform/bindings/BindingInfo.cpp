#include "platform/bindings/BindingInfo.h"

#include "platform/base/Diagnostics.h"
#include "platform/base/Format.h"
#include "platform/base/NSNull.h"

namespace vornix {
namespace {

std::shared_ptr<NSObject> option(const NSDictionary& options, std::string_view key) {
  return objectUnlessNull(options.objectForKey(key));
}

std::shared_ptr<NSValueTransformer> namedTransformer(const std::shared_ptr<NSObject>& name) {
  const auto text = std::dynamic_pointer_cast<NSString>(name);
  auto transformer = text ? NSValueTransformer::valueTransformerForName(text->text()) : nullptr;
  if (!transformer) {
    reportDiagnostic(text::format("There is no value transformer of the name \"%@\"", name));
  }
  return transformer;
}

}  // namespace

std::shared_ptr<NSValueTransformer> valueTransformerOfOptions(const NSDictionary& options) {
  if (const auto object = option(options, NSValueTransformerBindingOption)) {
    auto transformer = std::dynamic_pointer_cast<NSValueTransformer>(object);
    if (!transformer) reportDiagnostic(text::format("%@ is no value transformer", object));
    return transformer;
  }
  const auto name = option(options, NSValueTransformerNameBindingOption);
  return name ? namedTransformer(name) : nullptr;
}

}  // namespace vornix
