#include "tests/contract/support/FileManagerProgram.h"

#include "platform/linux/bus/SessionBus.h"

namespace vornix::contract {
namespace {

constexpr const char* kFileManagerName = "org.freedesktop.FileManager1";

}  // namespace

FileManagerProgram::FileManagerProgram()
    : service_({kFileManagerName, "/org/freedesktop/FileManager1", kFileManagerName},
               {BusService::method("ShowItems", "ass", "", &FileManagerProgram::showItems)}, this) {
}

int FileManagerProgram::showItems(sd_bus_message* message, void* self, sd_bus_error* /*error*/) {
  auto& manager = *static_cast<FileManagerProgram*>(self);
  BusCall call(BusMessage::sharing(message));
  if (manager.refusesAll) {
    call.refuse("org.example.Error.Unwilling", "not now");
    return 1;
  }
  for (std::string& url : call.arguments().readStrings().value_or(std::vector<std::string>{}))
    manager.asked.note(std::move(url));
  manager.tokens.note(call.arguments().readString().value_or("no text"));
  call.reply();
  return 1;
}

}  // namespace vornix::contract
