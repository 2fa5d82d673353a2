#include "tools/open/OpenArguments.h"

#include <string_view>

namespace vornix::tools {
namespace {

class Parser {
 public:
  explicit Parser(std::span<const char* const> words) : words_(words) {}

  std::optional<OpenArguments> run(std::string& problem) {
    while (!words_.empty() && problem_.empty() && !result_.wantsHelp) take(next());
    if (result_.wantsHelp) return result_;
    if (problem_.empty() && result_.identifier.empty())
      problem_ = "no application is named: -b IDENTIFIER is missing";
    problem = problem_;
    return problem_.empty() ? std::optional(result_) : std::nullopt;
  }

 private:
  std::string next() {
    std::string word = words_.front();
    words_ = words_.subspan(1);
    return word;
  }

  void take(const std::string& word) {
    if (word == "--args") {
      while (!words_.empty()) result_.arguments.push_back(next());
    } else if (filesFollow_ || !word.starts_with('-')) {
      result_.files.push_back(word);
    } else if (word == "-b") {
      takeIdentifier();
    } else if (word == "-F" || word == "--") {
      // A file's name may start with a hyphen.
      filesFollow_ = true;
    } else if (word == "-h" || word == "--help") {
      result_.wantsHelp = true;
    } else {
      problem_ = "unknown option \"" + word + "\"";
    }
  }

  void takeIdentifier() {
    if (words_.empty()) {
      problem_ = "-b needs an identifier";
    } else if (!result_.identifier.empty()) {
      problem_ = "-b is given twice";
    } else {
      result_.identifier = next();
    }
  }

  std::span<const char* const> words_;
  OpenArguments result_;
  std::string problem_;
  bool filesFollow_ = false;
};

}  // namespace

const char* const openUsage =
    "usage: vornix-open -b IDENTIFIER [-F] [FILE...] [--args ARGUMENT...]\n"
    "Starts the application whose desktop entry is IDENTIFIER.desktop.\n"
    "  -b IDENTIFIER   the application\n"
    "  -F              start it fresh; everything up to --args is a file to open\n"
    "  --args          everything that follows is handed to the application\n";

std::optional<OpenArguments> parseOpenArguments(std::span<const char* const> words,
                                                std::string& problem) {
  return Parser(words).run(problem);
}

}  // namespace vornix::tools
