#include "platform/system/SystemLog.h"

#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <ctime>
#include <utility>

#include "platform/linux/system/DatagramSocket.h"
#include "platform/linux/system/SystemLogSockets.h"
#include "platform/system/NSProcessInfo.h"

namespace vornix {
namespace {

constexpr int kUserFacility = 1;

// The number of one of the log's own facilities; none for a name of the caller's.
std::optional<int> facilityNumber(std::string_view name) {
  constexpr std::array<std::string_view, 24> kNames{
      "kern",   "user",   "mail",     "daemon", "auth",   "syslog", "lpr",    "news",
      "uucp",   "cron",   "authpriv", "ftp",    "",       "",       "",       "",
      "local0", "local1", "local2",   "local3", "local4", "local5", "local6", "local7"};
  // The first is the kernel's alone.
  for (std::size_t number = 1; number < kNames.size(); ++number) {
    if (!name.empty() && kNames.at(number) == name) return static_cast<int>(number);
  }
  return std::nullopt;
}

// Who logs, as every record says it.
struct Origin {
  std::string process;
  std::optional<std::string> facility;

  [[nodiscard]] int number() const {
    return facility ? facilityNumber(*facility).value_or(kUserFacility) : kUserFacility;
  }
  // The facility where it is no number; empty otherwise.
  [[nodiscard]] std::string ownFacility() const {
    return facility && !facilityNumber(*facility) ? *facility : std::string();
  }
};

// Messages end as C texts do, whatever receives them.
std::string_view untilNull(std::string_view message) {
  return message.substr(0, message.find('\0'));
}

class JournalClient final : public SystemLogClient {
 public:
  JournalClient(DatagramSocket socket, Origin origin)
      : socket_(std::move(socket)), origin_(std::move(origin)) {}

  void log(int priority, std::string_view message) override {
    std::string record;
    appendField(record, "PRIORITY", std::to_string(priority));
    appendField(record, "SYSLOG_FACILITY", std::to_string(origin_.number()));
    appendField(record, "SYSLOG_IDENTIFIER", origin_.process);
    appendField(record, "SYSLOG_PID", std::to_string(::getpid()));
    const auto facility = origin_.ownFacility();
    if (!facility.empty()) appendField(record, "FACILITY", facility);
    appendField(record, "MESSAGE", untilNull(message));
    const int error = socket_.send(record);
    if (error == EMSGSIZE || error == ENOBUFS) static_cast<void>(socket_.sendAsFile(record));
  }

 private:
  // A value of several lines carries its length, in little-endian order.
  static void appendField(std::string& record, std::string_view name, std::string_view value) {
    record.append(name);
    if (value.find('\n') == std::string_view::npos) {
      record.append("=").append(value);
    } else {
      record += '\n';
      for (unsigned shift = 0; shift < 64; shift += 8) {
        record += static_cast<char>((std::uint64_t{value.size()} >> shift) & 0xFFU);
      }
      record.append(value);
    }
    record += '\n';
  }

  DatagramSocket socket_;
  Origin origin_;
};

// "Nov  5 00:54:05", whatever the locale.
std::string timestamp() {
  constexpr std::array<const char*, 12> kMonths{"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  if (localtime_r(&now, &local) == nullptr) return {};
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), "%s %2d %02d:%02d:%02d ",
                kMonths.at(static_cast<std::size_t>(local.tm_mon)), local.tm_mday, local.tm_hour,
                local.tm_min, local.tm_sec);
  return text.data();
}

class SyslogClient final : public SystemLogClient {
 public:
  SyslogClient(DatagramSocket socket, Origin origin)
      : socket_(std::move(socket)), origin_(std::move(origin)) {}

  void log(int priority, std::string_view message) override {
    message = untilNull(message);
    const auto facility = origin_.ownFacility();
    const std::string start = "<" + std::to_string(origin_.number() * 8 + priority) + ">" +
                              timestamp() + origin_.process +
                              (facility.empty() ? "" : "/" + facility) + "[" +
                              std::to_string(::getpid()) + "]: ";
    // This protocol has no room for more than a datagram: its start is what can be kept.
    while (socket_.send(start + std::string(message)) == EMSGSIZE && !message.empty()) {
      message = message.substr(0, message.size() / 2);
    }
  }

 private:
  DatagramSocket socket_;
  Origin origin_;
};

}  // namespace

std::unique_ptr<SystemLogClient> openSystemLogAt(const SystemLogSockets& sockets,
                                                 const std::optional<std::string>& facility,
                                                 const std::string& process) {
  const Origin origin{process, facility};
  if (auto journal = DatagramSocket::connect(sockets.journal)) {
    return std::make_unique<JournalClient>(*std::move(journal), origin);
  }
  if (auto syslog = DatagramSocket::connect(sockets.syslog)) {
    return std::make_unique<SyslogClient>(*std::move(syslog), origin);
  }
  return nullptr;
}

std::unique_ptr<SystemLogClient> openSystemLog(const std::optional<std::string>& facility) {
  return openSystemLogAt({}, facility, NSProcessInfo::processInfo().processName());
}

}  // namespace vornix
