#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "platform/linux/bus/SessionBus.h"

namespace vornix::contract {

// A notification server on a connection of its own, served by the test's run loop.
class NotificationDaemon {
 public:
  struct Shown {
    std::string applicationName;
    std::string summary;
    std::string body;
    std::vector<std::string> actions;
    Dictionary hints;
    std::uint32_t replaces = 0;
    std::int64_t timeout = 0;
  };

  explicit NotificationDaemon(std::string name = "test daemon",
                              std::vector<std::string> capabilities = {"actions", "body"});

  // The person clicks; GNOME and others announce a token first.
  void act(std::uint32_t identifier, const std::string& key, const std::string& token = "");
  void end(std::uint32_t identifier);

  std::map<std::uint32_t, Shown> shown;
  std::vector<std::uint32_t> closed;
  // Errors for the next requests to show something.
  std::vector<std::string> refusals;

 private:
  std::vector<BusOperation> operations();
  void notify(BusCall call);
  void emit(const std::string& member, std::uint32_t identifier, const SessionBus::Writer& rest);

  std::string name_;
  std::vector<std::string> capabilities_;
  std::uint32_t lastIdentifier_ = 0;
  SessionBus bus_;
  BusRegistration object_;
};

}  // namespace vornix::contract
