#include "agent/AgentMain.h"

int main(int argc, char** argv) {
  return vornix::runAgent(argc, argv, vornix::processAgentServices());
}
