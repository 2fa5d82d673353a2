#pragma once

#include <memory>
#include <string>

#include "platform/linux/desktop/LinuxFileViewer.h"
#include "tests/support/FakeApplicationBus.h"
#include "tests/support/PrivateBus.h"
#include "tests/support/ScratchFolder.h"

namespace vornix::contract {

// A bus of its own and a search path on which nothing but a stand-in "xdg-open" can be found. The
// search path and the current folder are put back at the end.
class LinuxFileViewerWorld {
 public:
  explicit LinuxFileViewerWorld(const std::vector<tests::PrivateBus::Service>& services = {});
  ~LinuxFileViewerWorld();
  LinuxFileViewerWorld(const LinuxFileViewerWorld&) = delete;
  LinuxFileViewerWorld& operator=(const LinuxFileViewerWorld&) = delete;

  [[nodiscard]] std::unique_ptr<FileViewer> makeViewer(double patience = kBusTimeout) {
    return desktop::makeFileViewer(connection_, applications, patience);
  }
  void installOpener();
  // What the opener is told next, and the activation token in its environment; both say so when
  // there is nothing for half a minute.
  [[nodiscard]] std::string awaitOpened();
  [[nodiscard]] const std::string& lastToken() const { return lastToken_; }

  tests::FakeApplicationBus applications;
  tests::ScratchFolder folder;

 private:
  [[nodiscard]] std::string nextWord() const;

  tests::PrivateBus bus_;
  SessionBus connection_;
  int reports_ = -1;
  std::string path_;
  std::string currentFolder_;
  std::string lastToken_;
};

}  // namespace vornix::contract
