#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

namespace vornix::tools {

// What a call of the program asks for.
struct OpenArguments {
  std::string identifier;
  std::vector<std::string> files;
  // For the application.
  std::vector<std::string> arguments;
  bool wantsHelp = false;
};

extern const char* const openUsage;

// `words`: the command line without the program's name. None, and a sentence in `problem`, for one
// that makes no sense.
[[nodiscard]] std::optional<OpenArguments> parseOpenArguments(std::span<const char* const> words,
                                                              std::string& problem);

}  // namespace vornix::tools
