#pragma once

#include <string>
#include <string_view>

namespace vornix {

// Decides for many items whether they go by a name, as `findFile` has it. An item's candidate is
// its name, without the extension unless it is a folder's.
class FileNameSearch {
 public:
  enum class Answer { no, yes, dependsOnCandidate };

  FileNameSearch(std::string_view name, bool matchByWords);

  // What can be told before anybody asks whether the item is a folder.
  [[nodiscard]] Answer matches(std::string_view itemName) const;
  // The candidate is in lower case.
  [[nodiscard]] bool matches(std::string_view itemName, std::string_view candidate) const;

 private:
  // False only where no candidate can match.
  [[nodiscard]] bool mayMatch(std::string_view itemName) const;

  // In lower case.
  std::string name_;
  // Stands in the name of every item that matches.
  std::string part_;
  bool matchByWords_;
  bool isAscii_;
};

}  // namespace vornix
