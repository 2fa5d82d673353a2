#include "foundation/NumberedCopyExpressions.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "platform/base/Format.h"
#include "platform/base/Mutex.h"

namespace vornix {
namespace {

using Expression = std::shared_ptr<const NSRegularExpression>;

constexpr std::size_t kMostKept = 16;
constexpr std::size_t kLongestKept = 1024;

Expression compiled(std::string_view name) {
  return NSRegularExpression::regularExpressionWithPattern(
      text::format("(%@)( )*[0-9]+", name), NSRegularExpressionOptions::caseInsensitive);
}

// The latest first.
class Expressions {
 public:
  static Expressions& shared() {
    static Expressions& expressions = *new Expressions;
    return expressions;
  }

  Expression expressionFor(std::string_view name) {
    const Lock lock(mutex_);
    const auto known = std::ranges::find(kept_, name, &Kept::first);
    if (known != kept_.end()) {
      std::rotate(kept_.begin(), known, known + 1);
    } else {
      if (kept_.size() == kMostKept) kept_.pop_back();
      kept_.emplace(kept_.begin(), name, compiled(name));
    }
    return kept_.front().second;
  }

 private:
  using Kept = std::pair<std::string, Expression>;

  Mutex mutex_;
  std::vector<Kept> kept_ VORNIX_GUARDED_BY(mutex_){};
};

}  // namespace

Expression numberedCopyExpression(std::string_view name) {
  return name.size() > kLongestKept ? compiled(name) : Expressions::shared().expressionFor(name);
}

}  // namespace vornix
