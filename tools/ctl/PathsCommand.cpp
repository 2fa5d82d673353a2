#include "tools/ctl/PathsCommand.h"

namespace vornix::tools {

CommandResult runPathsCommand(Words words,
                              const std::function<std::vector<Location>()>& locations) {
  bool asJson = false;
  for (const std::string_view word : words) {
    if (word != "--json") {
      return badUsage("paths does not know \"" + std::string(word) + "\"");
    }
    asJson = true;
  }
  const auto all = locations();
  return {.output = asJson ? locationsAsJson(all) : locationTable(all)};
}

}  // namespace vornix::tools
