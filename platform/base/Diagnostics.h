#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace vornix {

// What the platform layer has to tell the person who runs the program: one clear line. The layer
// stands below the logger, so a program hands its logger in; until then lines go to standard
// error. Any thread.
void reportDiagnostic(std::string_view line);

// Replaces the receiver; an empty function restores standard error. The receiver may be called on
// any thread and must not throw.
void setDiagnosticReceiver(std::function<void(std::string_view)> receiver);

}  // namespace vornix
