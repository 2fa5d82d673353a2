#pragma once

#include <functional>
#include <memory>

#include "foundation/VXBoolConditionalLock.h"
#include "platform/runloop/NSOperationQueue.h"
#include "platform/system/HttpClient.h"

namespace vornix {

// Sends hits, one request at a time in the order given, or at once on the calling thread. What
// becomes of a request interests nobody. Main thread.
class HitDelivery {
 public:
  // Asked at the first request, and never in a run without one. Any thread.
  using MakeClient = std::function<std::unique_ptr<HttpClient>()>;
  // Queues a block for the main thread. Any thread.
  using DispatchOnMainQueue = std::function<void(std::function<void()>)>;

  HitDelivery(MakeClient makeClient, DispatchOnMainQueue dispatchOnMainQueue);
  HitDelivery(const HitDelivery&) = delete;
  HitDelivery& operator=(const HitDelivery&) = delete;
  // Waits for the request that is on its way and drops those behind it.
  ~HitDelivery();

  // Returns when the exchange is over or has failed. Neither waits for queued requests nor holds
  // them up.
  void sendSynchronously(const HttpRequest& request);

  // Returns at once. The request starts when the one before it is over and its completion has run
  // on the main thread.
  void enqueue(HttpRequest request);

  // True while a queued request is on its way.
  [[nodiscard]] const std::shared_ptr<VXBoolConditionalLock>& sendingLock() const {
    return sendingLock_;
  }
  void setSendingLock(std::shared_ptr<VXBoolConditionalLock> lock);

  // One operation at a time; made when first asked for.
  [[nodiscard]] const std::shared_ptr<NSOperationQueue>& connectionQueue();
  // Null makes a new one when next asked for.
  void setConnectionQueue(std::shared_ptr<NSOperationQueue> queue);

 private:
  class AsynchronousSender;

  MakeClient makeClient_;
  std::shared_ptr<AsynchronousSender> asynchronousSender_;
  std::unique_ptr<HttpClient> synchronousClient_;
  std::shared_ptr<VXBoolConditionalLock> sendingLock_;
  std::shared_ptr<NSOperationQueue> connectionQueue_;
};

}  // namespace vornix
