#include "platform/bindings/KeyValueBinding.h"

#include <utility>

#include "platform/base/Diagnostics.h"
#include "platform/base/Format.h"
#include "platform/bindings/BindingInfo.h"
#include "platform/runloop/GuardedCall.h"

namespace vornix {
namespace {

// How often a value may change again because it was set.
constexpr int kMostRounds = 16;

bool areEqual(const std::shared_ptr<NSObject>& left, const std::shared_ptr<NSObject>& right) {
  return left == right || (left && right && left->isEqual(*right));
}

}  // namespace

KeyValueBinding::KeyValueBinding(std::string_view key, const std::shared_ptr<NSObject>& observed,
                                 std::string_view keyPath, std::shared_ptr<NSDictionary> options)
    : key_(key), keyPath_(keyPath), options_(std::move(options)), observed_(observed) {}

void KeyValueBinding::start(const std::shared_ptr<NSObject>& owner) {
  const auto observed = observed_.lock();
  owner_ = owner;
  if (observed != owner) retainedObserved_ = observed;
  watch_ = std::make_shared<KeyPathWatch>(
      keyPath_, [weak = weak_from_this()](std::shared_ptr<NSObject> value) {
        if (const auto binding = weak.lock()) binding->receive(std::move(value));
      });
  // Reading the path may end the binding.
  const auto watch = watch_;
  receive(watch->start(observed));
}

void KeyValueBinding::stop() {
  watch_.reset();
}

std::shared_ptr<NSDictionary> KeyValueBinding::info() const {
  return std::make_shared<NSDictionary>(std::initializer_list<NSDictionary::Entry>{
      {std::string(NSObservedObjectKey), observed_.lock()},
      {std::string(NSObservedKeyPathKey), std::make_shared<NSString>(keyPath_)},
      {std::string(NSOptionsKey), options_}});
}

// The owner's setter may change the observed value again, such as where two objects are bound to
// each other. Such a change is applied afterwards, and only if it makes a difference.
void KeyValueBinding::receive(std::shared_ptr<NSObject> value) {
  latest_ = std::move(value);
  if (std::exchange(isApplying_, true)) return;
  bool hasSettled = false;
  for (int round = 0; round < kMostRounds && watch_ && !hasSettled; ++round) {
    const auto applied = latest_;
    apply(applied);
    hasSettled = areEqual(applied, latest_);
  }
  isApplying_ = false;
  latest_ = nullptr;
  if (watch_ && !hasSettled) {
    reportDiagnostic(
        text::format("The binding \"%@\" to \"%@\" changes what it observes "
                     "without end",
                     key_, keyPath_));
  }
}

void KeyValueBinding::apply(const std::shared_ptr<NSObject>& value) {
  const auto owner = owner_.lock();
  if (!owner) return;
  callReportingExceptions(
      [&] {
        const auto transformer = options_ ? valueTransformerOfOptions(*options_) : nullptr;
        owner->setValueForKey(transformer ? transformer->transformedValue(value) : value, key_);
      },
      "a bound setter");
}

}  // namespace vornix
