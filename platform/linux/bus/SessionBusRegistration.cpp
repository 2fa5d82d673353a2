#include <memory>
#include <string>
#include <utility>

#include "platform/linux/bus/SessionBusState.h"

namespace vornix {

SessionBus::State::Registration::~Registration() {
  if (slot != nullptr) {
    sdBus().sd_bus_slot_unref(slot);
  }
}

void SessionBus::State::Registration::buildTable() {
  sd_bus_vtable start{};
  start.type = _SD_BUS_VTABLE_START;
  start.x.start.element_size = sizeof(sd_bus_vtable);
  start.x.start.features = _SD_BUS_VTABLE_PARAM_NAMES;
  start.x.start.vtable_format_reference = sdBus().vtableFormat;
  table.push_back(start);
  for (const BusOperation& operation : operations) {
    sd_bus_vtable entry{};
    entry.type = _SD_BUS_VTABLE_METHOD;
    entry.flags = SD_BUS_VTABLE_UNPRIVILEGED;
    entry.x.method.member = operation.name.c_str();
    entry.x.method.signature = operation.arguments.c_str();
    entry.x.method.result = operation.result.c_str();
    entry.x.method.handler = &State::methodCalled;
    entry.x.method.names = "";
    table.push_back(entry);
  }
  sd_bus_vtable end{};
  end.type = _SD_BUS_VTABLE_END;
  table.push_back(end);
}

int SessionBus::State::signalArrived(sd_bus_message* message, void* registration, sd_bus_error*) {
  auto* self = static_cast<Registration*>(registration);
  const auto state = self->state.lock();
  auto shared = std::make_shared<BusMessage>(BusMessage::sharing(message));
  state->queueWork([weak = self->weak_from_this(), shared] {
    if (const auto live = weak.lock()) {
      // Another subscriber may have read it.
      sdBus().sd_bus_message_rewind(shared->get(), 1);
      live->signalHandler(*shared);
    }
  });
  return 0;
}

int SessionBus::State::methodCalled(sd_bus_message* message, void* registration, sd_bus_error*) {
  auto* self = static_cast<Registration*>(registration);
  const auto state = self->state.lock();
  auto call = std::make_shared<BusCall>(BusMessage::sharing(message));
  state->queueWork([weak = self->weak_from_this(), call] {
    const auto live = weak.lock();
    const std::string member = call->arguments().member();
    for (std::size_t index = 0; live && index < live->operations.size(); ++index) {
      if (live->operations[index].name == member) {
        live->operations[index].handler(std::move(*call));
        return;
      }
    }
  });
  return 1;
}

}  // namespace vornix
