// The agent without its ten seconds of waiting: everything else is the installed program's.
#include "agent/AgentMain.h"

int main(int argc, char** argv) {
  vornix::AgentServices services = vornix::processAgentServices();
  services.terminationDelay = 0;
  return vornix::runAgent(argc, argv, std::move(services));
}
