#pragma once

#include <memory>
#include <string_view>

#include "platform/text/NSRegularExpression.h"

namespace vornix {

// "(name)( )*[0-9]+" without regard to case, the name as it stands; null where that does not
// compile. Those of the latest names are kept, since one name is usually compared with many. Any
// thread.
[[nodiscard]] std::shared_ptr<const NSRegularExpression> numberedCopyExpression(
    std::string_view name);

}  // namespace vornix
