#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string_view>
#include <vector>

#include "platform/base/NSObject.h"

namespace vornix {

// Tells of every change of the value that a key path of an object leads to, also where an object on
// the way is replaced by another. Retains none of the objects, and is not retained by them.
class KeyPathWatch : public std::enable_shared_from_this<KeyPathWatch> {
 public:
  // Told the new value, on the thread of the change.
  using Handler = std::function<void(std::shared_ptr<NSObject> value)>;

  KeyPathWatch(std::string_view keyPath, Handler handler);
  KeyPathWatch(const KeyPathWatch&) = delete;
  KeyPathWatch& operator=(const KeyPathWatch&) = delete;
  ~KeyPathWatch();

  // Watches the path from that object on; answers the present value.
  std::shared_ptr<NSObject> start(std::shared_ptr<NSObject> root);

 private:
  class Link;

  std::shared_ptr<NSObject> connect(std::size_t first, std::shared_ptr<NSObject> object);
  void changed(std::size_t position, NSObject& object);

  const Handler handler_;
  // One a key: the same object may stand at several places of the path.
  std::vector<std::shared_ptr<Link>> links_;
};

}  // namespace vornix
