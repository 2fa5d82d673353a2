#include "foundation/NSObject+Additions.h"

#include <functional>
#include <string>

#include "foundation/MainThreadDispatch.h"

namespace vornix {
namespace {

using Notice = void (NSObject::*)(std::string_view key);

void send(Notice notice, const std::shared_ptr<NSObject>& receiver,
          std::optional<std::string_view> key) {
  if (!receiver || !key) return;
  runOnMainQueueAsync(receiver,
                      [=, key = std::string(*key)] { std::invoke(notice, *receiver, key); });
}

}  // namespace

void willChangeValueForKeyOnMainThread(const std::shared_ptr<NSObject>& self,
                                       std::optional<std::string_view> key) {
  send(&NSObject::willChangeValueForKey, self, key);
}

void didChangeValueForKeyOnMainThread(const std::shared_ptr<NSObject>& self,
                                      std::optional<std::string_view> key) {
  send(&NSObject::didChangeValueForKey, self, key);
}

}  // namespace vornix
