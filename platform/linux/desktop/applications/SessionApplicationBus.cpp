#include "platform/linux/desktop/applications/SessionApplicationBus.h"

#include <cerrno>
#include <map>
#include <memory>

#include "platform/base/Text.h"
#include "platform/linux/bus/SessionBus.h"
#include "platform/linux/desktop/ActivationToken.h"

namespace vornix::desktop {
namespace {

constexpr std::string_view kBus = "org.freedesktop.DBus";
constexpr std::string_view kManager = "org.freedesktop.systemd1";
constexpr std::string_view kManagerPath = "/org/freedesktop/systemd1";
constexpr std::string_view kManagerInterface = "org.freedesktop.systemd1.Manager";
// How long a start may take before it counts as started all the same.
constexpr double kStartTime = 5;

BusMethod ofBus(const char* member) {
  return {.destination = std::string(kBus),
          .path = "/org/freedesktop/DBus",
          .interface = std::string(kBus),
          .member = member};
}

BusMethod ofManager(const char* member) {
  return {.destination = std::string(kManager),
          .path = std::string(kManagerPath),
          .interface = std::string(kManagerInterface),
          .member = member,
          .autoStart = false};
}

std::string objectPathOf(std::string_view name) {
  std::string path = "/" + text::replaceAll(name, ".", "/");
  return text::replaceAll(path, "-", "_");
}

void writePlatformData(BusMessage& message, const std::string& token) {
  Dictionary data;
  if (!token.empty()) data = {{"activation-token", token}, {"desktop-startup-id", token}};
  message.writeDictionary(data);
}

// Opens "(sv)" and its variant; `write` fills in the value.
template <typename Write>
void writeProperty(BusMessage& message, std::string_view name, const char* type, Write write) {
  message.open('r', "sv");
  message.writeString(name);
  message.open('v', type);
  write();
  message.close();
  message.close();
}

void writeTextProperty(BusMessage& message, std::string_view name, std::string_view value) {
  writeProperty(message, name, "s", [&] { message.writeString(value); });
}

// The manager replaces variables in the words.
std::vector<std::string> literalWords(const std::vector<std::string>& words) {
  std::vector<std::string> literal;
  literal.reserve(words.size());
  for (const std::string& word : words) literal.push_back(text::replaceAll(word, "$", "$$"));
  return literal;
}

void writeProgram(BusMessage& message, const TransientService& service) {
  message.open('a', "(sasb)");
  message.open('r', "sasb");
  message.writeString(service.program);
  message.writeStrings(literalWords(service.arguments));
  message.writeBool(false);
  message.close();
  message.close();
}

void writeService(BusMessage& message, const TransientService& service) {
  message.writeString(service.unit);
  message.writeString("fail");
  message.open('a', "(sv)");
  if (!service.description.empty()) writeTextProperty(message, "Description", service.description);
  // Started when the program runs; over when its last process has ended; forgotten then.
  writeTextProperty(message, "Type", "exec");
  writeTextProperty(message, "ExitType", "cgroup");
  writeTextProperty(message, "CollectMode", "inactive-or-failed");
  writeTextProperty(message, "Slice", "app.slice");
  if (!service.workingDirectory.empty())
    writeTextProperty(message, "WorkingDirectory", service.workingDirectory);
  writeProperty(message, "Environment", "as", [&] { message.writeStrings(service.environment); });
  writeProperty(message, "ExecStart", "a(sasb)", [&] { writeProgram(message, service); });
  message.close();
  message.open('a', "(sa(sv))");
  message.close();
}

// The results of the manager's jobs, kept from before a job is begun: it may end at once.
class JobResults {
 public:
  explicit JobResults(SessionBus& bus) {
    registration_ = bus.subscribe({.sender = std::string(kManager),
                                   .path = std::string(kManagerPath),
                                   .interface = std::string(kManagerInterface),
                                   .member = "JobRemoved"},
                                  [results = results_](BusMessage& message) {
                                    static_cast<void>(message.readUint32());
                                    const auto job = message.readString();
                                    const auto unit = message.readString();
                                    const auto result = message.readString();
                                    if (job && unit && result) (*results)[*job] = *result;
                                  });
  }

  // Turns the run loop until the job has ended; empty when that takes too long.
  [[nodiscard]] std::string waitFor(const std::string& job) const {
    if (!registration_) return {};
    NSRunLoop::mainRunLoop()->runUntil([&] { return results_->contains(job); }, kStartTime);
    const auto found = results_->find(job);
    return found == results_->end() ? std::string() : found->second;
  }

 private:
  using Results = std::map<std::string, std::string>;
  std::shared_ptr<Results> results_ = std::make_shared<Results>();
  BusRegistration registration_;
};

class SessionApplicationBus final : public ApplicationBus {
 public:
  explicit SessionApplicationBus(SessionBus& bus) : bus_(bus) {}

  [[nodiscard]] std::vector<std::string> ownedNames() override {
    BusReply reply = bus_.call(ofBus("ListNames"));
    auto names = reply.succeeded() ? reply.message.readStrings() : std::nullopt;
    if (!names) return {};
    std::erase_if(*names, [](const std::string& name) { return name.starts_with(':'); });
    return *std::move(names);
  }

  [[nodiscard]] std::optional<std::int32_t> processOwning(const std::string& name) override {
    BusReply reply = bus_.call(ofBus("GetConnectionUnixProcessID"),
                               [&](BusMessage& message) { message.writeString(name); });
    const auto process = reply.succeeded() ? reply.message.readUint32() : std::nullopt;
    return process ? std::optional(static_cast<std::int32_t>(*process)) : std::nullopt;
  }

  [[nodiscard]] std::string takeActivationToken() override { return takeActivationTokenOfClick(); }

  bool activate(const std::string& name, const std::string& token) override {
    const BusMethod method{.destination = name,
                           .path = objectPathOf(name),
                           .interface = "org.freedesktop.Application",
                           .member = "Activate",
                           .autoStart = false};
    return bus_.call(method, [&](BusMessage& message) { writePlatformData(message, token); })
        .succeeded();
  }

  [[nodiscard]] bool hasServiceManager() override { return bus_.nameHasOwner(kManager); }

  [[nodiscard]] std::optional<NSError> startTransientService(
      const TransientService& service) override {
    const JobResults results(bus_);
    // The manager tells of jobs only those who have subscribed; one that has no such operation
    // tells everybody.
    static_cast<void>(bus_.call(ofManager("Subscribe")));
    BusReply reply = bus_.call(ofManager("StartTransientUnit"),
                               [&](BusMessage& message) { writeService(message, service); });
    if (!reply.succeeded()) return reply.error->asError(service.unit);
    const std::string result = results.waitFor(reply.message.readString().value_or(""));
    if (result.empty() || result == "done") return std::nullopt;
    return posixError(ECANCELED, service.unit + ": " + result);
  }

  [[nodiscard]] std::optional<std::int32_t> mainProcess(const std::string& unit) override {
    BusReply object =
        bus_.call(ofManager("GetUnit"), [&](BusMessage& message) { message.writeString(unit); });
    const auto path = object.succeeded() ? object.message.readString() : std::nullopt;
    if (!path) return std::nullopt;
    BusMethod get = ofManager("Get");
    get.path = *path;
    get.interface = "org.freedesktop.DBus.Properties";
    BusReply reply = bus_.call(get, [](BusMessage& message) {
      message.writeString("org.freedesktop.systemd1.Service");
      message.writeString("MainPID");
    });
    const auto process = reply.succeeded() ? reply.message.readVariant() : std::nullopt;
    const std::int64_t number = process ? process->integerValue() : 0;
    return number > 0 ? std::optional(static_cast<std::int32_t>(number)) : std::nullopt;
  }

 private:
  SessionBus& bus_;
};

}  // namespace

ApplicationBus& sharedApplicationBus() {
  static auto& bus = *new SessionApplicationBus(SessionBus::shared());
  return bus;
}

}  // namespace vornix::desktop
