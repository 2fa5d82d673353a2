#include "tests/contract/support/BusService.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <stdexcept>
#include <utility>

namespace vornix::contract {
namespace {

sd_bus_vtable firstEntry() {
  sd_bus_vtable entry{};
  entry.type = _SD_BUS_VTABLE_START;
  entry.x.start.element_size = sizeof(sd_bus_vtable);
  entry.x.start.features = _SD_BUS_VTABLE_PARAM_NAMES;
  entry.x.start.vtable_format_reference = sdBus().vtableFormat;
  return entry;
}

sd_bus_vtable lastEntry() {
  sd_bus_vtable entry{};
  entry.type = _SD_BUS_VTABLE_END;
  return entry;
}

}  // namespace

BusService::BusService(Address address, const std::vector<sd_bus_vtable>& entries, void* data)
    : address_(std::move(address)), data_(data), stop_(eventfd(0, EFD_CLOEXEC)) {
  if (loadSdBus(nullptr) == nullptr) throw std::runtime_error("no message bus library");
  table_.push_back(firstEntry());
  table_.insert(table_.end(), entries.begin(), entries.end());
  table_.push_back(lastEntry());
  std::promise<bool> isReady;
  auto ready = isReady.get_future();
  thread_ = std::thread([this, &isReady] { serve(isReady); });
  if (ready.get()) return;
  thread_.join();
  close(stop_);
  throw std::runtime_error("no place for " + address_.name);
}

BusService::~BusService() {
  eventfd_write(stop_, 1);
  thread_.join();
  close(stop_);
}

sd_bus_vtable BusService::method(const char* name, const char* arguments, const char* result,
                                 sd_bus_message_handler_t handler) {
  sd_bus_vtable entry{};
  entry.type = _SD_BUS_VTABLE_METHOD;
  entry.flags = SD_BUS_VTABLE_UNPRIVILEGED;
  entry.x.method.member = name;
  entry.x.method.signature = arguments;
  entry.x.method.result = result;
  entry.x.method.handler = handler;
  entry.x.method.names = "";
  return entry;
}

sd_bus_vtable BusService::property(const char* name, const char* type, sd_bus_property_get_t get) {
  sd_bus_vtable entry{};
  entry.type = _SD_BUS_VTABLE_PROPERTY;
  entry.x.property.member = name;
  entry.x.property.signature = type;
  entry.x.property.get = get;
  return entry;
}

bool BusService::open(sd_bus*& bus, sd_bus_slot*& object) {
  return loadSdBus(nullptr) != nullptr && sdBus().sd_bus_open_user(&bus) >= 0 &&
         sdBus().sd_bus_add_object_vtable(bus, &object, address_.path.c_str(),
                                          address_.interface.c_str(), table_.data(), data_) >= 0 &&
         sdBus().sd_bus_request_name(bus, address_.name.c_str(), 0) >= 0;
}

void BusService::serve(std::promise<bool>& isReady) {
  sd_bus* bus = nullptr;
  sd_bus_slot* object = nullptr;
  bool isServing = open(bus, object);
  isReady.set_value(isServing);
  while (isServing) {
    int served = 1;
    while (served > 0) served = sdBus().sd_bus_process(bus, nullptr);
    pollfd watched[] = {{.fd = stop_, .events = POLLIN, .revents = 0},
                        {.fd = sdBus().sd_bus_get_fd(bus),
                         .events = static_cast<short>(sdBus().sd_bus_get_events(bus)),
                         .revents = 0}};
    isServing = served == 0 && poll(watched, 2, -1) > 0 && watched[0].revents == 0;
  }
  sdBus().sd_bus_slot_unref(object);
  sdBus().sd_bus_close_unref(bus);
}

}  // namespace vornix::contract
