#pragma once

#include <future>
#include <string>
#include <thread>
#include <vector>

#include "platform/linux/bus/SdBus.h"

namespace vornix::contract {

// A program of the session bus with one object, on a connection and a thread of its own: for tests
// whose own thread waits inside a call. Throws when the bus has no place for it.
class BusService {
 public:
  struct Address {
    std::string name;
    std::string path;
    std::string interface;
  };

  // Entries as the bus library has them, without first and last. Their handlers are called on the
  // service's thread with `data`.
  BusService(Address address, const std::vector<sd_bus_vtable>& entries, void* data);
  ~BusService();
  BusService(const BusService&) = delete;
  BusService& operator=(const BusService&) = delete;

  [[nodiscard]] static sd_bus_vtable method(const char* name, const char* arguments,
                                            const char* result, sd_bus_message_handler_t handler);
  [[nodiscard]] static sd_bus_vtable property(const char* name, const char* type,
                                              sd_bus_property_get_t get);

 private:
  void serve(std::promise<bool>& isReady);
  [[nodiscard]] bool open(sd_bus*& bus, sd_bus_slot*& object);

  Address address_;
  std::vector<sd_bus_vtable> table_;
  void* data_;
  int stop_ = -1;
  std::thread thread_;
};

}  // namespace vornix::contract
