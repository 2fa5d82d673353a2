#pragma once

#include <optional>
#include <string>

// The log of a program of the family: everything from debug to assert as standard lines, on
// standard output and in one file for each application. Any thread.
namespace vornix {

// "FOLDER/Vornix.log", in the log folder of the shared `VXPaths`. Where that answers none, as when
// it has only just made the folder, the path starts with "(null)" and leads nowhere.
[[nodiscard]] std::string vnx_pathForLog();
// The same in another folder; a tilde at its start is the home.
[[nodiscard]] std::string vnx_pathForLog(const std::optional<std::string>& logFolder);

// Makes that logger the shared one; to be called once, early. The file is made when missing, stays
// open, and is neither rotated nor truncated; several programs may log to it at once and lose no
// line. Where it cannot be opened, and where something else than a file stands there, only standard
// output remains.
void initVNXLogger();
// The same with another file.
void initVNXLogger(const std::string& path);

}  // namespace vornix
