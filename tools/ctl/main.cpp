#include <cstdio>
#include <string>

#include "locations/VXPaths.h"
#include "platform/files/NSFileManager.h"
#include "tools/ctl/CommandLine.h"
#include "tools/ctl/LocationCatalogue.h"
#include "tools/ctl/PathsCommand.h"

namespace vornix::tools {
namespace {

CommandResult runPaths(Words words) {
  return runPathsCommand(words, [] {
    return locationCatalogue(VXPaths::sharedInstance(), NSFileManager::defaultManager());
  });
}

bool print(const std::string& text, std::FILE* stream) {
  const bool written = std::fwrite(text.data(), 1, text.size(), stream) == text.size();
  return std::fflush(stream) == 0 && written;
}

int run(Words words) {
  const Command commands[] = {
      {"paths", "[--json]", "lists the locations that the programs of the family use", runPaths},
  };
  const CommandResult result = runCommandLine(commands, words);
  if (!print(result.output, stdout)) {
    std::perror("vornixctl: cannot write the output");
    return kFailed;
  }
  (void)print(result.errors, stderr);
  return result.status;
}

}  // namespace
}  // namespace vornix::tools

int main(int count, char** words) {
  const vornix::tools::Words all(words, static_cast<std::size_t>(count));
  return vornix::tools::run(all.subspan(all.empty() ? 0 : 1));
}
