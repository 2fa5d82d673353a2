#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace vornix::desktop {

// What one ".desktop" file says about an application.
struct DesktopEntry {
  // The file's name below its application folder, without suffix, "-" for "/".
  std::string identifier{};
  // Empty for a command that stands in no file.
  std::string path{};
  // In the user's language.
  std::string name{};
  std::string icon{};
  // The command line as written; empty when there is none.
  std::string exec{};
  // A program without which the application does not count as installed; may be empty.
  std::string tryExec{};
  // Where it is to be started; empty for anywhere.
  std::string workingDirectory{};
  bool runsInTerminal = false;
  // The file stands for no application, and for none of the same identifier further down the
  // search order either.
  bool isHidden = false;
};

// Reads the file. None, and the reason in `problem`, for a file that cannot be read, is no regular
// file, is larger than a megabyte or describes no application.
[[nodiscard]] std::optional<DesktopEntry> readDesktopEntry(std::string_view identifier,
                                                           const std::string& path,
                                                           std::string_view locale,
                                                           std::string& problem);

}  // namespace vornix::desktop
