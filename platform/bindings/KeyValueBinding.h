#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "platform/base/NSDictionary.h"
#include "platform/base/NSObject.h"
#include "platform/bindings/KeyPathWatch.h"

namespace vornix {

// One binding: sets a key of an object, its owner, to what a key path of another object leads to.
class KeyValueBinding : public std::enable_shared_from_this<KeyValueBinding> {
 public:
  // Retains the observed object, unless that is the owner.
  KeyValueBinding(std::string_view key, const std::shared_ptr<NSObject>& observed,
                  std::string_view keyPath, std::shared_ptr<NSDictionary> options);

  // Sets the key now and at every change.
  void start(const std::shared_ptr<NSObject>& owner);
  // Sets nothing any more.
  void stop();

  [[nodiscard]] std::shared_ptr<NSDictionary> info() const;

 private:
  void receive(std::shared_ptr<NSObject> value);
  void apply(const std::shared_ptr<NSObject>& value);

  const std::string key_;
  const std::string keyPath_;
  const std::shared_ptr<NSDictionary> options_;
  const std::weak_ptr<NSObject> observed_;
  std::weak_ptr<NSObject> owner_;
  std::shared_ptr<NSObject> retainedObserved_;
  std::shared_ptr<KeyPathWatch> watch_;
  std::shared_ptr<NSObject> latest_;
  bool isApplying_ = false;
};

}  // namespace vornix
