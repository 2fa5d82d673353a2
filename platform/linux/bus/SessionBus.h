#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/base/NSError.h"
#include "platform/linux/bus/BusMessage.h"
#include "platform/runloop/NSRunLoop.h"

namespace vornix {

// Long enough for a busy machine, short enough that nobody thinks that we hang.
inline constexpr double kBusTimeout = 5;
inline constexpr double kNoBusTimeout = 0;

inline constexpr std::string_view kBusErrorNoReply = "org.freedesktop.DBus.Error.NoReply";
inline constexpr std::string_view kBusErrorFailed = "org.freedesktop.DBus.Error.Failed";
inline constexpr std::string_view kBusErrorInvalidArguments =
    "org.freedesktop.DBus.Error.InvalidArgs";

// Why a call had no answer: the bus's name of the error and its text. `number` is the system's.
struct BusError {
  std::string name;
  std::string message;
  int number = 0;

  [[nodiscard]] NSError asError(std::string_view what) const;
};

// The answer to a call, or why there is none.
struct BusReply {
  BusMessage message;
  std::optional<BusError> error;

  [[nodiscard]] bool succeeded() const { return !error; }
};

// What is called, and how.
struct BusMethod {
  std::string destination;
  std::string path;
  std::string interface;
  std::string member;
  // Seconds; `kNoBusTimeout` waits as long as the other side lives (not for blocking calls).
  double timeout = kBusTimeout;
  // Whether the bus may start the program that owns the destination.
  bool autoStart = true;
};

// A call from outside that waits for our answer. Answer it once; one dropped unanswered is refused.
class BusCall {
 public:
  explicit BusCall(BusMessage message) : message_(std::move(message)) {}
  BusCall(BusCall&&) noexcept = default;
  BusCall& operator=(BusCall&&) noexcept = default;
  BusCall(const BusCall&) = delete;
  BusCall& operator=(const BusCall&) = delete;
  ~BusCall();

  [[nodiscard]] BusMessage& arguments() { return message_; }
  void reply(const std::function<void(BusMessage&)>& write = {});
  void refuse(std::string_view errorName, const std::string& text);

 private:
  BusMessage message_;
  bool answered_ = false;
};

// One operation of an object that we offer. Signatures as the bus writes them.
struct BusOperation {
  std::string name;
  std::string arguments;
  std::string result;
  std::function<void(BusCall)> handler;
};

// Which signals to listen to; empty fields match anything.
struct BusSignalFilter {
  std::string sender{};
  std::string path{};
  std::string interface {};
  std::string member{};
  std::string firstArgument{};
};

// Keeps a subscription or an object on the bus; dropping it ends that, and no handler is called
// afterwards.
using BusRegistration = std::shared_ptr<void>;

enum class BusNameClaim {
  // Refused when somebody has it; nobody can take it from us.
  exclusive,
  // Takes it from an owner that lets itself be replaced, and lets itself be replaced.
  replacing
};

// A connection to the session bus, opened when first needed and served by the run loop. Handlers
// are called from the loop, never from inside an operation of this class, so they may call, turn
// the loop, or drop registrations. When the connection breaks, registrations and names are gone;
// the next `connect` starts afresh. The loop's thread only.
class SessionBus {
 public:
  using Writer = std::function<void(BusMessage&)>;
  using ReplyHandler = std::function<void(BusReply)>;
  using SignalHandler = std::function<void(BusMessage&)>;

  // `loop`: the calling thread's.
  explicit SessionBus(std::shared_ptr<NSRunLoop> loop);
  SessionBus(const SessionBus&) = delete;
  SessionBus& operator=(const SessionBus&) = delete;
  ~SessionBus();

  // The process's own, of the main run loop; does nothing until used. Never destroyed.
  [[nodiscard]] static SessionBus& shared();

  // Connects unless connected. An error, within `kBusTimeout`, when there is no bus.
  [[nodiscard]] std::optional<NSError> connect();
  [[nodiscard]] bool isConnected() const;
  // Our own name; empty when not connected.
  [[nodiscard]] std::string uniqueName() const;

  // These connect first. A blocking call does not turn the run loop.
  [[nodiscard]] BusReply call(const BusMethod& method, const Writer& write = {});
  // The handler is called exactly once, from the run loop, also when the call cannot be sent or the
  // connection breaks.
  void callAsync(const BusMethod& method, const Writer& write, ReplyHandler handler);
  [[nodiscard]] std::optional<BusError> emitSignal(const std::string& path,
                                                   const std::string& interface,
                                                   const std::string& member, const Writer& write);
  // Unique name of the owner; empty when there is none or the bus cannot be asked. Starts nothing.
  [[nodiscard]] std::string nameOwner(std::string_view name);
  [[nodiscard]] bool nameHasOwner(std::string_view name) { return !nameOwner(name).empty(); }

  // True when the name is ours.
  [[nodiscard]] bool requestName(const std::string& name, BusNameClaim claim);
  void releaseName(const std::string& name);

  // Null when the bus refused. Handlers see each signal from its start.
  [[nodiscard]] BusRegistration subscribe(const BusSignalFilter& filter, SignalHandler handler);
  [[nodiscard]] BusRegistration exportObject(const std::string& path, const std::string& interface,
                                             const std::vector<BusOperation>& operations);

  // Blocks until everything written so far has left, `kBusTimeout` at the most.
  void flush();
  // Handles what has arrived, without waiting and without turning the run loop.
  void processPending();
  // Called from the loop each time an open connection breaks.
  [[nodiscard]] BusRegistration whenLost(std::function<void()> handler);

  // What proves to the desktop that the person clicked, for whoever is brought to the front next;
  // empty when there was no click. Taking it leaves none.
  void setActivationToken(std::string token);
  [[nodiscard]] std::string takeActivationToken();

 private:
  class State;
  std::shared_ptr<State> state_;
};

}  // namespace vornix
