#include "platform/linux/desktop/applications/ExecLine.h"

#include <algorithm>
#include <span>

#include "platform/base/PathText.h"

namespace vornix::desktop {
namespace {

bool isBlank(char letter) {
  return letter == ' ' || letter == '\t' || letter == '\n';
}

// Splits a command line; blanks separate words, quotes keep them together.
class WordReader {
 public:
  explicit WordReader(std::string_view text) : rest_(text) {}

  // False at the end of the text.
  bool next(std::string& word) {
    while (!rest_.empty() && isBlank(rest_.front())) rest_.remove_prefix(1);
    if (rest_.empty()) return false;
    word.clear();
    while (!rest_.empty() && !isBlank(rest_.front())) readPiece(word);
    return true;
  }
  [[nodiscard]] bool isBroken() const { return broken_; }

 private:
  char take() {
    const char letter = rest_.front();
    rest_.remove_prefix(1);
    return letter;
  }

  void readPiece(std::string& word) {
    const char letter = take();
    if (letter == '"') {
      readDoubleQuoted(word);
    } else if (letter == '\'') {
      readSingleQuoted(word);
    } else if (letter == '\\' && !rest_.empty()) {
      word += take();
    } else {
      word += letter;
    }
  }

  void readDoubleQuoted(std::string& word) {
    while (!rest_.empty()) {
      const char letter = take();
      if (letter == '"') return;
      const bool escapes = letter == '\\' && !rest_.empty() &&
                           std::string_view("\"`$\\").find(rest_.front()) != std::string::npos;
      word += escapes ? take() : letter;
    }
    broken_ = true;
  }

  void readSingleQuoted(std::string& word) {
    const auto end = rest_.find('\'');
    broken_ = broken_ || end == std::string_view::npos;
    word += rest_.substr(0, end);
    rest_ = end == std::string_view::npos ? std::string_view() : rest_.substr(end + 1);
  }

  std::string_view rest_;
  bool broken_ = false;
};

enum class FileCode { None, One, Many };

// The code letters of a word: "%%" and a lone percent sign at the end are none.
std::string codeLetters(std::string_view word) {
  std::string letters;
  for (std::size_t i = 0; i + 1 < word.size(); ++i) {
    if (word[i] != '%') continue;
    if (word[++i] != '%') letters += word[i];
  }
  return letters;
}

bool holdsCode(const std::string& word) {
  return !codeLetters(word).empty();
}

bool isListCode(std::string_view word) {
  return word == "%F" || word == "%U";
}

bool areKnownCodes(std::string_view word) {
  if (isListCode(word)) return true;
  return codeLetters(word).find_first_not_of("fuickdDnNvm") == std::string::npos;
}

FileCode fileCodeOf(const CommandLine& words) {
  if (std::ranges::any_of(words, isListCode)) return FileCode::Many;
  const bool one = std::ranges::any_of(words, [](const std::string& word) {
    return codeLetters(word).find_first_of("fu") != std::string::npos;
  });
  return one ? FileCode::One : FileCode::None;
}

// Codes that older entries still carry stand for nothing.
std::string textOfCode(char code, const DesktopEntry& entry, const std::string& file) {
  switch (code) {
    case '%':
      return "%";
    case 'f':
    case 'u':
      return file;
    case 'c':
      return entry.name;
    case 'k':
      return entry.path;
    default:
      return {};
  }
}

std::string expanded(std::string_view word, const DesktopEntry& entry, const std::string& file) {
  std::string text;
  for (std::size_t i = 0; i < word.size(); ++i) {
    const bool starts = word[i] == '%' && i + 1 < word.size();
    if (starts) {
      text += textOfCode(word[++i], entry, file);
    } else {
      text += word[i];
    }
  }
  return text;
}

void appendWord(CommandLine& line, const std::string& word, const DesktopEntry& entry,
                std::span<const std::string> files) {
  if (isListCode(word)) {
    line.insert(line.end(), files.begin(), files.end());
  } else if (word == "%i") {
    if (!entry.icon.empty()) line.insert(line.end(), {"--icon", entry.icon});
  } else {
    const std::string text = expanded(word, entry, files.empty() ? std::string() : files.front());
    const bool vanishes = text.empty() && holdsCode(word);
    if (!vanishes) line.push_back(text);
  }
}

CommandLine commandLine(const CommandLine& words, const DesktopEntry& entry,
                        std::span<const std::string> files,
                        const std::vector<std::string>& arguments) {
  CommandLine line;
  for (const std::string& word : words) appendWord(line, word, entry, files);
  if (fileCodeOf(words) == FileCode::None) line.insert(line.end(), files.begin(), files.end());
  line.insert(line.end(), arguments.begin(), arguments.end());
  return line;
}

bool isAssignment(const std::string& word) {
  const auto equals = word.find('=');
  return equals != std::string::npos && equals > 0 && word.front() != '-';
}

}  // namespace

std::optional<CommandLine> wordsOfExec(std::string_view exec) {
  WordReader reader(exec);
  CommandLine words;
  std::string word;
  while (reader.next(word)) words.push_back(word);
  if (words.empty() || reader.isBroken()) return std::nullopt;
  return words;
}

std::optional<std::vector<CommandLine>> commandLines(const DesktopEntry& entry,
                                                     const std::vector<std::string>& files,
                                                     const std::vector<std::string>& arguments,
                                                     std::string& problem) {
  const auto words = wordsOfExec(entry.exec);
  const bool runnable =
      words && !words->front().empty() && std::ranges::all_of(*words, areKnownCodes);
  if (!runnable) {
    problem = entry.path + ": the command line \"" + entry.exec + "\" cannot be run";
    return std::nullopt;
  }
  std::vector<CommandLine> lines;
  if (fileCodeOf(*words) != FileCode::One || files.size() < 2) {
    lines.push_back(commandLine(*words, entry, files, arguments));
    return lines;
  }
  for (const std::string& file : files)
    lines.push_back(commandLine(*words, entry, std::span(&file, 1), arguments));
  return lines;
}

CommandLine fixedWordsOfExec(std::string_view exec) {
  auto words = wordsOfExec(exec).value_or(CommandLine());
  words.erase(std::ranges::find_if(words, holdsCode), words.end());
  if (words.empty() || text::lastPathComponent(words.front()) != "env") return words;
  const auto program = std::find_if_not(words.begin() + 1, words.end(), isAssignment);
  words.erase(words.begin(), program);
  return words;
}

}  // namespace vornix::desktop
