#include <cstdio>
#include <string>

#include "platform/desktop/ApplicationService.h"
#include "tools/open/OpenArguments.h"

namespace vornix::tools {
namespace {

constexpr int kStarted = 0;
constexpr int kNotStarted = 1;
constexpr int kBadUsage = 2;

int complain(const std::string& sentence, int status) {
  std::fprintf(stderr, "vornix-open: %s\n", sentence.c_str());
  return status;
}

int open(const OpenArguments& request) {
  ApplicationService& applications = sharedApplicationService();
  const auto path = applications.applicationPath(request.identifier);
  if (!path) return complain("there is no application \"" + request.identifier + "\"", kNotStarted);
  std::optional<NSError> error;
  const auto application = applications.launch({.bundlePath = *path,
                                                .files = request.files,
                                                .arguments = request.arguments,
                                                .newInstance = true},
                                               error);
  if (application) return kStarted;
  const std::string reason = error ? error->localizedDescription : "for no known reason";
  return complain("\"" + request.identifier + "\" cannot be started: " + reason, kNotStarted);
}

int run(std::span<const char* const> words) {
  std::string problem;
  const auto request = parseOpenArguments(words, problem);
  if (!request) return complain(problem + "\n" + openUsage, kBadUsage);
  if (request->wantsHelp) return std::fputs(openUsage, stdout) < 0 ? kNotStarted : kStarted;
  return open(*request);
}

}  // namespace
}  // namespace vornix::tools

int main(int count, char** words) {
  const std::span<const char* const> all(words, static_cast<std::size_t>(count));
  return vornix::tools::run(all.subspan(all.empty() ? 0 : 1));
}
