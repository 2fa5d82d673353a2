#pragma once

#include <systemd/sd-bus.h>

#include <string>

namespace vornix {

// The functions of libsystemd that we call. The library is opened by the first `sdBus()`, so a
// process that never talks to the bus does not carry it.
#define VORNIX_SD_BUS_FUNCTIONS(X)    \
  X(sd_bus_add_object_vtable)         \
  X(sd_bus_call)                      \
  X(sd_bus_call_async)                \
  X(sd_bus_close_unref)               \
  X(sd_bus_error_free)                \
  X(sd_bus_flush)                     \
  X(sd_bus_get_events)                \
  X(sd_bus_get_fd)                    \
  X(sd_bus_get_timeout)               \
  X(sd_bus_get_n_queued_write)        \
  X(sd_bus_get_unique_name)           \
  X(sd_bus_is_open)                   \
  X(sd_bus_is_ready)                  \
  X(sd_bus_add_match)                 \
  X(sd_bus_message_append_basic)      \
  X(sd_bus_message_at_end)            \
  X(sd_bus_message_close_container)   \
  X(sd_bus_message_enter_container)   \
  X(sd_bus_message_exit_container)    \
  X(sd_bus_message_get_error)         \
  X(sd_bus_message_get_member)        \
  X(sd_bus_message_get_sender)        \
  X(sd_bus_message_new_method_call)   \
  X(sd_bus_message_new_method_errorf) \
  X(sd_bus_message_new_method_return) \
  X(sd_bus_message_new_signal)        \
  X(sd_bus_message_open_container)    \
  X(sd_bus_message_peek_type)         \
  X(sd_bus_message_read_basic)        \
  X(sd_bus_message_ref)               \
  X(sd_bus_message_rewind)            \
  X(sd_bus_message_set_auto_start)    \
  X(sd_bus_message_skip)              \
  X(sd_bus_message_unref)             \
  X(sd_bus_open_user)                 \
  X(sd_bus_process)                   \
  X(sd_bus_release_name)              \
  X(sd_bus_request_name)              \
  X(sd_bus_send)                      \
  X(sd_bus_slot_unref)                \
  X(sd_bus_wait)

struct SdBus {
// NOLINTNEXTLINE(bugprone-macro-parentheses): a declared name takes none.
#define VORNIX_DECLARE(function) decltype(&::function) function = nullptr;
  VORNIX_SD_BUS_FUNCTIONS(VORNIX_DECLARE)
#undef VORNIX_DECLARE
  const unsigned* vtableFormat = nullptr;
};

// Null when the library cannot be loaded; `why`, when given, then says so. Any thread.
[[nodiscard]] const SdBus* loadSdBus(std::string* why);

// Only after `loadSdBus` has succeeded on the same thread.
[[nodiscard]] const SdBus& sdBus();

}  // namespace vornix
