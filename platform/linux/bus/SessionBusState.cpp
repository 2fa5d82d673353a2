#include "platform/linux/bus/SessionBusState.h"

#include <poll.h>

#include <cerrno>
#include <cstring>
#include <ctime>
#include <utility>

namespace vornix {
namespace {

constexpr std::uint64_t kMicrosecondsPerSecond = 1'000'000;

std::uint64_t monotonicMicroseconds() {
  timespec time{};
  clock_gettime(CLOCK_MONOTONIC, &time);
  return static_cast<std::uint64_t>(time.tv_sec) * kMicrosecondsPerSecond +
         static_cast<std::uint64_t>(time.tv_nsec) / 1000;
}

std::uint64_t microseconds(double seconds) {
  return static_cast<std::uint64_t>(seconds * static_cast<double>(kMicrosecondsPerSecond));
}

NSError noBus(int number) {
  return posixError(number, "the session's message bus cannot be reached");
}

}  // namespace

BusError describe(const sd_bus_error& error, int number) {
  return BusError{.name = error.name != nullptr ? error.name : std::string(kBusErrorFailed),
                  .message = error.message != nullptr ? error.message : std::strerror(number),
                  .number = number};
}

class SessionBus::State::Source final : public RunLoopSource {
 public:
  explicit Source(State& state) : state_(state) {}

  [[nodiscard]] WaitHandle handle() const override {
    if (state_.bus() == nullptr) {
      return {};
    }
    const int events = sdBus().sd_bus_get_events(state_.bus());
    return {.descriptor = sdBus().sd_bus_get_fd(state_.bus()),
            .wantsRead = true,
            .wantsWrite = events > 0 && (events & POLLOUT) != 0};
  }

  [[nodiscard]] std::optional<double> timeout() const override {
    std::uint64_t deadline = 0;
    if (state_.bus() == nullptr || sdBus().sd_bus_get_timeout(state_.bus(), &deadline) < 0 ||
        deadline == UINT64_MAX) {
      return std::nullopt;
    }
    const std::uint64_t now = monotonicMicroseconds();
    return deadline <= now
               ? 0.0
               : static_cast<double>(deadline - now) / static_cast<double>(kMicrosecondsPerSecond);
  }

  void perform() override { state_.receive(); }

 private:
  State& state_;
};

SessionBus::State::State(std::shared_ptr<NSRunLoop> loop) : loop_(std::move(loop)) {}

SessionBus::State::~State() {
  disconnect();
}

std::optional<NSError> SessionBus::State::connect() {
  if (bus_ != nullptr && sdBus().sd_bus_is_open(bus_) > 0) {
    return std::nullopt;
  }
  if (bus_ != nullptr) {
    lose();
  }
  std::string why;
  if (loadSdBus(&why) == nullptr) {
    return NSError{.domain = std::string(NSPOSIXErrorDomain),
                   .code = ELIBACC,
                   .localizedDescription = "the message bus library cannot be loaded: " + why};
  }
  if (const int opened = sdBus().sd_bus_open_user(&bus_); opened < 0) {
    bus_ = nullptr;
    // The library's number for "neither address nor runtime folder" reads as a missing disk.
    return noBus(opened == -ENOMEDIUM ? ENOENT : -opened);
  }
  if (const int ready = waitUntilReady(); ready < 0) {
    bus_ = sdBus().sd_bus_close_unref(bus_);
    return noBus(-ready);
  }
  source_ = std::make_shared<Source>(*this);
  loop_->addSource(source_);
  return std::nullopt;
}

int SessionBus::State::waitUntilReady() const {
  const std::uint64_t deadline = monotonicMicroseconds() + microseconds(kBusTimeout);
  while (true) {
    const int ready = sdBus().sd_bus_is_ready(bus_);
    if (ready != 0) {
      return ready;
    }
    const int processed = sdBus().sd_bus_process(bus_, nullptr);
    if (processed < 0) {
      return processed;
    }
    const std::uint64_t now = monotonicMicroseconds();
    if (processed == 0) {
      if (now >= deadline) {
        return -ETIMEDOUT;
      }
      sdBus().sd_bus_wait(bus_, deadline - now);
    }
  }
}

void SessionBus::State::disconnect() {
  if (bus_ == nullptr) {
    return;
  }
  loop_->removeSource(*source_);
  bus_ = sdBus().sd_bus_close_unref(bus_);
  pendingCalls_.clear();
}

void SessionBus::State::receive() {
  int result = 1;
  while (bus_ != nullptr && result > 0) {
    result = sdBus().sd_bus_process(bus_, nullptr);
  }
  if (bus_ != nullptr && result < 0 && result != -EBUSY) {
    lose();
  }
}

void SessionBus::State::process() {
  receive();
  runQueuedWork();
}

void SessionBus::State::lose() {
  for (PendingCall& call : std::exchange(pendingCalls_, {})) {
    answerLater(std::move(call.handler),
                {std::string(kBusErrorNoReply), "the connection broke", ECONNRESET});
  }
  disconnect();
  for (const auto& weak : std::exchange(lostHandlers_, {})) {
    if (const auto handler = weak.lock()) {
      lostHandlers_.push_back(weak);
      queueWork([weak] {
        if (const auto live = weak.lock()) {
          (*live)();
        }
      });
    }
  }
}

// A block of the loop, unlike its source, may turn the loop and be served meanwhile.
void SessionBus::State::queueWork(std::function<void()> work) {
  work_.push_back(std::move(work));
  if (std::exchange(isWorkAnnounced_, true)) {
    return;
  }
  loop_->performBlock([weak = weak_from_this()] {
    if (const auto self = weak.lock()) {
      self->runQueuedWork();
    }
  });
}

void SessionBus::State::flush() {
  const std::uint64_t deadline = monotonicMicroseconds() + microseconds(kBusTimeout);
  std::uint64_t waiting = 0;
  while (bus_ != nullptr && sdBus().sd_bus_get_n_queued_write(bus_, &waiting) >= 0 && waiting > 0) {
    const std::uint64_t now = monotonicMicroseconds();
    const int processed = sdBus().sd_bus_process(bus_, nullptr);
    if (processed < 0 || now >= deadline) {
      return;
    }
    if (processed == 0) {
      pollfd descriptor{.fd = sdBus().sd_bus_get_fd(bus_), .events = POLLOUT, .revents = 0};
      poll(&descriptor, 1, static_cast<int>((deadline - now) / 1000) + 1);
    }
  }
}

void SessionBus::State::runQueuedWork() {
  const auto keepAlive = shared_from_this();
  isWorkAnnounced_ = false;
  while (!work_.empty()) {
    const auto next = std::move(work_.front());
    work_.pop_front();
    next();
  }
}

std::optional<BusError> SessionBus::State::newCall(const BusMethod& method, const Writer& write,
                                                   BusMessage& message) {
  if (const auto error = connect()) {
    return BusError{std::string(kBusErrorFailed), error->localizedDescription,
                    static_cast<int>(error->code)};
  }
  sd_bus_message* raw = nullptr;
  const int made = sdBus().sd_bus_message_new_method_call(
      bus_, &raw, method.destination.c_str(), method.path.c_str(), method.interface.c_str(),
      method.member.c_str());
  if (made < 0) {
    return BusError{std::string(kBusErrorInvalidArguments), "no such address on the bus", -made};
  }
  message = BusMessage(raw);
  sdBus().sd_bus_message_set_auto_start(raw, method.autoStart ? 1 : 0);
  if (write) {
    write(message);
  }
  if (!message.isValid()) {
    return BusError{std::string(kBusErrorInvalidArguments), "the bus cannot carry this text",
                    message.failure()};
  }
  return std::nullopt;
}

void SessionBus::State::sendWithReply(const BusMessage& message, std::uint64_t timeout,
                                      ReplyHandler handler) {
  pendingCalls_.push_back({this, std::move(handler)});
  const int result = sdBus().sd_bus_call_async(bus_, nullptr, message.get(), &State::replyArrived,
                                               &pendingCalls_.back(), timeout);
  if (result < 0) {
    ReplyHandler unsent = std::move(pendingCalls_.back().handler);
    pendingCalls_.pop_back();
    answerLater(std::move(unsent), describe({}, -result));
  }
}

void SessionBus::State::answerLater(ReplyHandler handler, BusError error) {
  queueWork([handler = std::move(handler), error = std::move(error)] {
    handler({.message = {}, .error = error});
  });
}

void SessionBus::State::addLostHandler(const std::shared_ptr<std::function<void()>>& handler) {
  lostHandlers_.emplace_back(handler);
}

int SessionBus::State::replyArrived(sd_bus_message* message, void* pendingCall, sd_bus_error*) {
  auto* pending = static_cast<PendingCall*>(pendingCall);
  State& state = *pending->state;
  auto reply = std::make_shared<BusReply>();
  if (const sd_bus_error* error = sdBus().sd_bus_message_get_error(message)) {
    reply->error = describe(*error, EIO);
  } else {
    reply->message = BusMessage::sharing(message);
  }
  state.queueWork([handler = std::move(pending->handler), reply] { handler(std::move(*reply)); });
  state.pendingCalls_.remove_if([pending](const PendingCall& call) { return &call == pending; });
  return 1;
}

}  // namespace vornix
