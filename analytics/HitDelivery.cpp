#include "analytics/HitDelivery.h"

#include <atomic>
#include <utility>

namespace vornix {
namespace {

// A client that cannot be made, or breaks its promise not to throw, is a failed request.
void sendIgnoringFailure(std::unique_ptr<HttpClient>& client,
                         const HitDelivery::MakeClient& makeClient,
                         const HttpRequest& request) noexcept {
  try {
    if (!client) client = makeClient();
    if (client) (void)client->send(request);
  } catch (...) {
    return;
  }
}

}  // namespace

// Sends on a worker of its own and has the completion run on the main thread.
class HitDelivery::AsynchronousSender {
 public:
  AsynchronousSender(MakeClient makeClient, DispatchOnMainQueue dispatchOnMainQueue)
      : makeClient_(std::move(makeClient)), dispatchOnMainQueue_(std::move(dispatchOnMainQueue)) {}

  void start(HttpRequest request, std::function<void()> completion) {
    worker_.addOperation([this, request = std::move(request), done = std::move(completion)] {
      sendIgnoringFailure(client_, makeClient_, request);
      dispatchOnMainQueue_(done);
    });
  }

  void close() { closed_ = true; }
  [[nodiscard]] bool isClosed() const { return closed_; }

 private:
  MakeClient makeClient_;
  DispatchOnMainQueue dispatchOnMainQueue_;
  std::unique_ptr<HttpClient> client_;
  std::atomic<bool> closed_ = false;
  // Last, since its end waits for the operation that uses the members above.
  NSOperationQueue worker_{1};
};

HitDelivery::HitDelivery(MakeClient makeClient, DispatchOnMainQueue dispatchOnMainQueue)
    : makeClient_(makeClient),
      asynchronousSender_(std::make_shared<AsynchronousSender>(std::move(makeClient),
                                                               std::move(dispatchOnMainQueue))),
      sendingLock_(VXBoolConditionalLock::create()) {}

HitDelivery::~HitDelivery() {
  // Whoever waits for its turn would otherwise wait for a main thread that is busy here.
  asynchronousSender_->close();
  sendingLock_->setBoolValue(false);
}

void HitDelivery::sendSynchronously(const HttpRequest& request) {
  sendIgnoringFailure(synchronousClient_, makeClient_, request);
}

void HitDelivery::enqueue(HttpRequest request) {
  connectionQueue()->addOperation(
      [sender = asynchronousSender_, lock = sendingLock_, request = std::move(request)] {
        lock->waitForUnlock();
        lock->setBoolValue(true);
        const auto unlock = [lock] { lock->setBoolValue(false); };
        if (sender->isClosed()) {
          unlock();
        } else {
          sender->start(request, unlock);
        }
      });
}

void HitDelivery::setSendingLock(std::shared_ptr<VXBoolConditionalLock> lock) {
  sendingLock_ = std::move(lock);
}

const std::shared_ptr<NSOperationQueue>& HitDelivery::connectionQueue() {
  if (!connectionQueue_) connectionQueue_ = std::make_shared<NSOperationQueue>(1);
  return connectionQueue_;
}

void HitDelivery::setConnectionQueue(std::shared_ptr<NSOperationQueue> queue) {
  connectionQueue_ = std::move(queue);
}

}  // namespace vornix
