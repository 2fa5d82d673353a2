#pragma once

#include <string_view>

namespace vornix {

// The desktop's program that shows folders. Main thread.
class FileViewer {
 public:
  virtual ~FileViewer() = default;

  // Brings the item's folder to the person's eyes and selects the item in it; where nothing can
  // select, the folder alone is opened. A relative path starts at the current folder. True when a
  // program has taken the request, which takes seconds at the most. Else false, and a diagnostic
  // says why.
  virtual bool select(std::string_view path) = 0;
};

// The desktop's own, never destroyed.
[[nodiscard]] FileViewer& sharedFileViewer();

}  // namespace vornix
