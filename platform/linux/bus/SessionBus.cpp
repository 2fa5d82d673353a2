#include "platform/linux/bus/SessionBus.h"

#include <cerrno>
#include <utility>

#include "platform/linux/bus/SessionBusState.h"

namespace vornix {
namespace {

constexpr const char* kBusName = "org.freedesktop.DBus";
constexpr const char* kBusPath = "/org/freedesktop/DBus";

std::uint64_t timeoutOf(double seconds) {
  return seconds == kNoBusTimeout ? UINT64_MAX : static_cast<std::uint64_t>(seconds * 1e6);
}

BusError localError(int number, std::string text) {
  return BusError{std::string(kBusErrorFailed), std::move(text), number};
}

std::string matchRule(const BusSignalFilter& filter) {
  std::string rule = "type='signal'";
  const auto add = [&rule](const char* key, const std::string& value) {
    if (!value.empty()) {
      rule += std::string(",") + key + "='" + value + "'";
    }
  };
  add("sender", filter.sender);
  add("path", filter.path);
  add("interface", filter.interface);
  add("member", filter.member);
  add("arg0", filter.firstArgument);
  return rule;
}

}  // namespace

NSError BusError::asError(std::string_view what) const {
  NSError error = posixError(number, what);
  error.localizedDescription = std::string(what) + ": " + message;
  return error;
}

SessionBus::SessionBus(std::shared_ptr<NSRunLoop> loop)
    : state_(std::make_shared<State>(std::move(loop))) {}

SessionBus::~SessionBus() {
  state_->disconnect();
}

SessionBus& SessionBus::shared() {
  static auto& bus = *new SessionBus(NSRunLoop::mainRunLoop());
  return bus;
}

std::optional<NSError> SessionBus::connect() {
  return state_->connect();
}

bool SessionBus::isConnected() const {
  return state_->bus() != nullptr;
}

std::string SessionBus::uniqueName() const {
  const char* name = nullptr;
  if (!isConnected() || sdBus().sd_bus_get_unique_name(state_->bus(), &name) < 0) {
    return {};
  }
  return name;
}

BusReply SessionBus::call(const BusMethod& method, const Writer& write) {
  BusReply reply;
  BusMessage message;
  reply.error = state_->newCall(method, write, message);
  if (reply.error) {
    return reply;
  }
  sd_bus_error error{};
  sd_bus_message* answer = nullptr;
  const int result =
      sdBus().sd_bus_call(state_->bus(), message.get(), timeoutOf(method.timeout), &error, &answer);
  if (result < 0) {
    reply.error = describe(error, -result);
    sdBus().sd_bus_error_free(&error);
  } else {
    reply.message = BusMessage(answer);
  }
  return reply;
}

void SessionBus::callAsync(const BusMethod& method, const Writer& write, ReplyHandler handler) {
  BusMessage message;
  if (auto error = state_->newCall(method, write, message)) {
    state_->answerLater(std::move(handler), *std::move(error));
    return;
  }
  state_->sendWithReply(message, timeoutOf(method.timeout), std::move(handler));
}

std::optional<BusError> SessionBus::emitSignal(const std::string& path,
                                               const std::string& interface,
                                               const std::string& member, const Writer& write) {
  if (const auto error = connect()) {
    return localError(static_cast<int>(error->code), error->localizedDescription);
  }
  sd_bus_message* raw = nullptr;
  const int made = sdBus().sd_bus_message_new_signal(state_->bus(), &raw, path.c_str(),
                                                     interface.c_str(), member.c_str());
  BusMessage message(raw);
  if (made >= 0 && write) {
    write(message);
  }
  const int sent =
      !message.isValid() ? -EINVAL : sdBus().sd_bus_send(state_->bus(), message.get(), nullptr);
  return sent < 0 ? std::optional(localError(-sent, "the signal could not be sent")) : std::nullopt;
}

std::string SessionBus::nameOwner(std::string_view name) {
  BusReply reply = call(
      {.destination = kBusName, .path = kBusPath, .interface = kBusName, .member = "GetNameOwner"},
      [name](BusMessage& message) { message.writeString(name); });
  return reply.succeeded() ? reply.message.readString().value_or("") : std::string();
}

bool SessionBus::requestName(const std::string& name, BusNameClaim claim) {
  const std::uint64_t flags =
      claim == BusNameClaim::replacing
          ? std::uint64_t{SD_BUS_NAME_ALLOW_REPLACEMENT | SD_BUS_NAME_REPLACE_EXISTING}
          : 0;
  return !connect() && sdBus().sd_bus_request_name(state_->bus(), name.c_str(), flags) >= 0;
}

void SessionBus::releaseName(const std::string& name) {
  if (isConnected()) {
    sdBus().sd_bus_release_name(state_->bus(), name.c_str());
  }
}

BusRegistration SessionBus::subscribe(const BusSignalFilter& filter, SignalHandler handler) {
  if (connect()) {
    return nullptr;
  }
  auto registration = std::make_shared<State::Registration>(state_);
  registration->signalHandler = std::move(handler);
  sd_bus_slot* slot = nullptr;
  if (sdBus().sd_bus_add_match(state_->bus(), &slot, matchRule(filter).c_str(),
                               &State::signalArrived, registration.get()) < 0) {
    return nullptr;
  }
  registration->slot = slot;
  return registration;
}

BusRegistration SessionBus::exportObject(const std::string& path, const std::string& interface,
                                         const std::vector<BusOperation>& operations) {
  if (connect()) {
    return nullptr;
  }
  auto registration = std::make_shared<State::Registration>(state_);
  registration->operations = operations;
  registration->buildTable();
  sd_bus_slot* slot = nullptr;
  if (sdBus().sd_bus_add_object_vtable(state_->bus(), &slot, path.c_str(), interface.c_str(),
                                       registration->table.data(), registration.get()) < 0) {
    return nullptr;
  }
  registration->slot = slot;
  return registration;
}

void SessionBus::flush() {
  state_->flush();
}

void SessionBus::processPending() {
  state_->process();
}

BusRegistration SessionBus::whenLost(std::function<void()> handler) {
  auto shared = std::make_shared<std::function<void()>>(std::move(handler));
  state_->addLostHandler(shared);
  return shared;
}

void SessionBus::setActivationToken(std::string token) {
  state_->activationToken = std::move(token);
}

std::string SessionBus::takeActivationToken() {
  return std::exchange(state_->activationToken, std::string());
}

BusCall::~BusCall() {
  if (message_.get() != nullptr && !answered_) {
    refuse(kBusErrorFailed, "The request was not carried out.");
  }
}

void BusCall::reply(const std::function<void(BusMessage&)>& write) {
  sd_bus_message* raw = nullptr;
  answered_ = true;
  if (sdBus().sd_bus_message_new_method_return(message_.get(), &raw) < 0) {
    return;
  }
  BusMessage answer(raw);
  if (write) {
    write(answer);
  }
  if (answer.isValid()) {
    sdBus().sd_bus_send(nullptr, answer.get(), nullptr);
  }
}

void BusCall::refuse(std::string_view errorName, const std::string& text) {
  sd_bus_message* raw = nullptr;
  answered_ = true;
  if (sdBus().sd_bus_message_new_method_errorf(message_.get(), &raw, std::string(errorName).c_str(),
                                               "%s", text.c_str()) < 0) {
    return;
  }
  const BusMessage answer(raw);
  sdBus().sd_bus_send(nullptr, answer.get(), nullptr);
}

}  // namespace vornix
