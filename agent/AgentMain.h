#pragma once

#include "agent/AgentServices.h"

namespace vornix {

// The agent's whole life: takes over shared settings, then decides or handles a click. Main thread;
// does not return in practice.
int runAgent(int argc, char** argv, AgentServices services);

}  // namespace vornix
