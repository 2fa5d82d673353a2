#pragma once

#include <string>
#include <vector>

#include "platform/base/Diagnostics.h"
#include "platform/base/PathText.h"
#include "platform/desktop/FileViewer.h"

namespace vornix::fakes {

// A desktop that only notes what it was to show.
class FakeFileViewer final : public FileViewer {
 public:
  bool canSelect = true;
  bool canOpen = true;
  // Where relative paths start.
  std::string currentFolder = "/";

  // Absolute paths.
  std::vector<std::string> selected;
  std::vector<std::string> opened;

  bool select(std::string_view path) override {
    const bool isName = !path.empty() && path.find('\0') == std::string_view::npos;
    if (!isName || (!canSelect && !canOpen)) {
      reportDiagnostic("\"" + std::string(path) + "\" cannot be shown");
      return false;
    }
    const std::string item =
        text::appendingPathComponent(path.starts_with('/') ? "" : currentFolder, path);
    if (canSelect) {
      selected.push_back(item);
    } else {
      opened.push_back(text::deletingLastPathComponent(item));
    }
    return true;
  }
};

// The one that `sharedFileViewer` answers on the fake platform.
FakeFileViewer& fileViewer();

}  // namespace vornix::fakes
