#pragma once

#include <memory>
#include <string_view>

#include "platform/base/NSDictionary.h"
#include "platform/bindings/NSValueTransformer.h"

namespace vornix {

// What `infoForBinding` answers: the object that is observed, the path as an NSString, and the
// options as an NSDictionary where there are any.
inline constexpr std::string_view NSObservedObjectKey = "NSObservedObject";
inline constexpr std::string_view NSObservedKeyPathKey = "NSObservedKeyPath";
inline constexpr std::string_view NSOptionsKey = "NSOptions";

// The options of a binding: a transformer, or the name of one that is registered.
inline constexpr std::string_view NSValueTransformerBindingOption = "NSValueTransformer";
inline constexpr std::string_view NSValueTransformerNameBindingOption = "NSValueTransformerName";

// The transformer that the options ask for: the first option, and the second where the first is
// missing or the null placeholder. Null where they ask for none; null and a diagnostic where the
// option has another type or the name is not registered.
[[nodiscard]] std::shared_ptr<NSValueTransformer> valueTransformerOfOptions(
    const NSDictionary& options);

}  // namespace vornix
