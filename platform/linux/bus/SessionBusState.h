#pragma once

#include <list>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/linux/bus/SdBus.h"
#include "platform/linux/bus/SessionBus.h"

namespace vornix {

// What the system says about a failed call, in words.
[[nodiscard]] BusError describe(const sd_bus_error& error, int number);

// The connection behind a `SessionBus`. The library calls back from inside its own processing,
// which cannot be re-entered; so every callback only queues work, done after processing.
class SessionBus::State : public std::enable_shared_from_this<SessionBus::State> {
 public:
  struct Registration : std::enable_shared_from_this<Registration> {
    explicit Registration(const std::shared_ptr<State>& owner) : state(owner) {}
    Registration(const Registration&) = delete;
    Registration& operator=(const Registration&) = delete;
    ~Registration();
    void buildTable();

    std::weak_ptr<State> state;
    sd_bus_slot* slot = nullptr;
    SignalHandler signalHandler;
    std::vector<BusOperation> operations;
    std::vector<sd_bus_vtable> table;
  };

  explicit State(std::shared_ptr<NSRunLoop> loop);
  State(const State&) = delete;
  State& operator=(const State&) = delete;
  ~State();

  [[nodiscard]] sd_bus* bus() const { return bus_; }
  [[nodiscard]] std::optional<NSError> connect();
  void disconnect();
  // Takes in what has arrived; its handlers run later, from the loop.
  void receive();
  // The same, and runs the handlers.
  void process();
  void flush();

  // Connects when needed and writes the call into `message`.
  [[nodiscard]] std::optional<BusError> newCall(const BusMethod& method, const Writer& write,
                                                BusMessage& message);
  void sendWithReply(const BusMessage& message, std::uint64_t timeout, ReplyHandler handler);
  void answerLater(ReplyHandler handler, BusError error);
  void addLostHandler(const std::shared_ptr<std::function<void()>>& handler);

  static int signalArrived(sd_bus_message* message, void* registration, sd_bus_error* error);
  static int methodCalled(sd_bus_message* message, void* registration, sd_bus_error* error);

  std::string activationToken;

 private:
  class Source;
  struct PendingCall {
    State* state;
    ReplyHandler handler;
  };

  static int replyArrived(sd_bus_message* message, void* pendingCall, sd_bus_error* error);
  [[nodiscard]] int waitUntilReady() const;
  void lose();
  void runQueuedWork();
  void queueWork(std::function<void()> work);

  std::shared_ptr<NSRunLoop> loop_;
  sd_bus* bus_ = nullptr;
  std::shared_ptr<Source> source_;
  std::list<std::function<void()>> work_;
  bool isWorkAnnounced_ = false;
  std::list<PendingCall> pendingCalls_;
  std::vector<std::weak_ptr<std::function<void()>>> lostHandlers_;
};

}  // namespace vornix
