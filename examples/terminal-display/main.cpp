// A notification server for the terminal: it draws what is posted, and takes the click from the
// keyboard, or from SIGUSR1 (the first button) where nobody can press a key.
#include <sys/signalfd.h>
#include <termios.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <map>
#include <optional>

#include "examples/terminal-display/ReminderCard.h"
#include "platform/linux/bus/SessionBus.h"

namespace vornix::demo {
namespace {

constexpr const char* kPath = "/org/freedesktop/Notifications";
constexpr const char* kInterface = "org.freedesktop.Notifications";
constexpr std::uint32_t kDismissedByPerson = 2;
constexpr std::uint32_t kClosedByCall = 3;

class TerminalDisplay {
 public:
  explicit TerminalDisplay(SessionBus& bus) : bus_(bus) {}

  bool start() {
    object_ = bus_.exportObject(
        kPath, kInterface,
        {{"Notify", "susssasa{sv}i", "u", [this](BusCall call) { notify(std::move(call)); }},
         {"CloseNotification", "u", "", [this](BusCall call) { closeByCall(std::move(call)); }},
         {"GetCapabilities", "", "as",
          [](BusCall call) {
            call.reply([](BusMessage& reply) { reply.writeStrings({"actions", "body"}); });
          }},
         {"GetServerInformation", "", "ssss", [](BusCall call) {
            call.reply([](BusMessage& reply) {
              for (const auto* text : {"Vornix Terminal Display", "Orvane", "1", "1.2"}) {
                reply.writeString(text);
              }
            });
          }}});
    return object_ && bus_.requestName(kInterface, BusNameClaim::exclusive);
  }

  void press(char key) {
    if (shown_.empty()) return;
    const std::uint32_t id = shown_.rbegin()->first;
    const std::string action = actionForKey(shown_.at(id), key);
    if (action.empty()) return;
    std::printf("  ► %s\n", labelOf(shown_.at(id), action).c_str());
    std::fflush(stdout);
    shown_.erase(id);
    emit("ActionInvoked", [id, &action](BusMessage& signal) {
      signal.writeUint32(id);
      signal.writeString(action);
    });
    emitClosed(id, kDismissedByPerson);
  }

 private:
  void notify(BusCall call) {
    BusMessage& arguments = call.arguments();
    (void)arguments.readString();
    const std::uint32_t replaced = arguments.readUint32().value_or(0);
    (void)arguments.readString();
    const auto title = arguments.readString().value_or("");
    const auto text = arguments.readString().value_or("");
    const auto actions = arguments.readStrings().value_or(std::vector<std::string>());
    const std::uint32_t id = replaced != 0 ? replaced : ++lastId_;
    shown_[id] = makeCard(title, text, actions);
    std::fputs(draw(shown_[id]).c_str(), stdout);
    if (isatty(STDIN_FILENO) != 0) {
      std::puts("  Keys: the number of a button, or Enter to click the reminder itself.");
    }
    std::fflush(stdout);
    call.reply([id](BusMessage& reply) { reply.writeUint32(id); });
  }

  void closeByCall(BusCall call) {
    const std::uint32_t id = call.arguments().readUint32().value_or(0);
    if (shown_.erase(id) > 0) emitClosed(id, kClosedByCall);
    call.reply();
  }

  void emitClosed(std::uint32_t id, std::uint32_t reason) {
    emit("NotificationClosed", [id, reason](BusMessage& signal) {
      signal.writeUint32(id);
      signal.writeUint32(reason);
    });
  }

  void emit(const char* member, const SessionBus::Writer& write) {
    if (const auto error = bus_.emitSignal(kPath, kInterface, member, write)) {
      std::fprintf(stderr, "terminal display: %s\n", error->message.c_str());
    }
    bus_.flush();
  }

  SessionBus& bus_;
  BusRegistration object_;
  std::map<std::uint32_t, ReminderCard> shown_;
  std::uint32_t lastId_ = 0;
};

// Keys one by one, without their echo, for as long as this lives.
class RawKeyboard final : public RunLoopSource {
 public:
  explicit RawKeyboard(TerminalDisplay& display) : display_(display) {
    if (tcgetattr(STDIN_FILENO, &before_) != 0) return;
    termios raw = before_;
    raw.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO);
    isRaw_ = tcsetattr(STDIN_FILENO, TCSAFLUSH, &raw) == 0;
  }
  ~RawKeyboard() override { restore(); }
  RawKeyboard(const RawKeyboard&) = delete;
  RawKeyboard& operator=(const RawKeyboard&) = delete;

  [[nodiscard]] WaitHandle handle() const override { return {.descriptor = STDIN_FILENO}; }
  void perform() override {
    char key = 0;
    if (read(STDIN_FILENO, &key, 1) == 1) display_.press(key);
  }
  void restore() {
    if (isRaw_) tcsetattr(STDIN_FILENO, TCSANOW, &before_);
    isRaw_ = false;
  }

 private:
  TerminalDisplay& display_;
  termios before_{};
  bool isRaw_ = false;
};

class Signals final : public RunLoopSource {
 public:
  Signals(TerminalDisplay& display, std::function<void()> end)
      : display_(display), end_(std::move(end)) {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int number : {SIGUSR1, SIGTERM, SIGINT, SIGHUP}) sigaddset(&signals, number);
    sigprocmask(SIG_BLOCK, &signals, nullptr);
    descriptor_ = signalfd(-1, &signals, SFD_CLOEXEC);
  }
  ~Signals() override { close(descriptor_); }
  Signals(const Signals&) = delete;
  Signals& operator=(const Signals&) = delete;

  [[nodiscard]] WaitHandle handle() const override { return {.descriptor = descriptor_}; }
  void perform() override {
    signalfd_siginfo information{};
    if (read(descriptor_, &information, sizeof information) != sizeof information) return;
    if (information.ssi_signo == SIGUSR1) {
      display_.press('1');
    } else {
      end_();
    }
  }

 private:
  TerminalDisplay& display_;
  std::function<void()> end_;
  int descriptor_ = -1;
};

int run() {
  const auto loop = NSRunLoop::mainRunLoop();
  TerminalDisplay display(SessionBus::shared());
  if (!display.start()) {
    std::fputs("terminal display: there is no bus, or it has a notification server already\n",
               stderr);
    return 1;
  }
  const auto lost = SessionBus::shared().whenLost([loop] { loop->stop(); });
  const auto signals = std::make_shared<Signals>(display, [loop] { loop->stop(); });
  loop->addSource(signals);
  std::shared_ptr<RawKeyboard> keyboard;
  if (isatty(STDIN_FILENO) != 0) {
    keyboard = std::make_shared<RawKeyboard>(display);
    loop->addSource(keyboard);
  }
  loop->run();
  loop->removeSource(*signals);
  if (keyboard) loop->removeSource(*keyboard);
  return 0;
}

}  // namespace
}  // namespace vornix::demo

int main() {
  return vornix::demo::run();
}
