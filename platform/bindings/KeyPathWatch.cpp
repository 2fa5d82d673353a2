#include "platform/bindings/KeyPathWatch.h"

#include <optional>
#include <string>
#include <tuple>
#include <utility>

#include "platform/bindings/KeyPath.h"
#include "platform/runloop/GuardedCall.h"

namespace vornix {
namespace {

// A value that cannot be read counts as missing.
std::shared_ptr<NSObject> valueOf(NSObject& object, std::string_view key) {
  std::shared_ptr<NSObject> value;
  callReportingExceptions([&] { value = object.valueForKey(key); }, "a bound getter");
  return value;
}

}  // namespace

// Observes one key of the path on the object that stands there at present.
class KeyPathWatch::Link final : public NSObject {
 public:
  Link(std::string_view key, std::size_t position) : key_(key), position_(position) {}

  [[nodiscard]] const std::string& key() const { return key_; }

  void moveTo(const std::shared_ptr<NSObject>& object, std::weak_ptr<KeyPathWatch> watch) {
    watch_ = std::move(watch);
    if (const auto old = object_.lock()) old->removeObserver(*this, key_);
    object_ = object;
    if (object) object->addObserver(shared_from_this(), key_);
  }

  void observeValueForKeyPath(std::string_view /*keyPath*/, NSObject& object) override {
    if (const auto watch = watch_.lock()) watch->changed(position_, object);
  }

 private:
  const std::string key_;
  const std::size_t position_;
  std::weak_ptr<NSObject> object_;
  std::weak_ptr<KeyPathWatch> watch_;
};

KeyPathWatch::KeyPathWatch(std::string_view keyPath, Handler handler)
    : handler_(std::move(handler)) {
  for (std::optional rest(keyPath); rest;) {
    std::string_view key;
    std::tie(key, rest) = firstKey(*rest);
    links_.push_back(std::make_shared<Link>(key, links_.size()));
  }
}

KeyPathWatch::~KeyPathWatch() = default;

std::shared_ptr<NSObject> KeyPathWatch::start(std::shared_ptr<NSObject> root) {
  return connect(0, std::move(root));
}

std::shared_ptr<NSObject> KeyPathWatch::connect(std::size_t first,
                                                std::shared_ptr<NSObject> object) {
  for (std::size_t position = first; position < links_.size(); ++position) {
    links_[position]->moveTo(object, weak_from_this());
    if (object) object = valueOf(*object, links_[position]->key());
  }
  return object;
}

void KeyPathWatch::changed(std::size_t position, NSObject& object) {
  handler_(connect(position + 1, valueOf(object, links_[position]->key())));
}

}  // namespace vornix
