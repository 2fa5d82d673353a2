#pragma once

#include <memory>
#include <string_view>

#include "platform/files/FileHierarchy.h"

namespace vornix {

// Answers 0 or an error number, as `FileSystem::openHierarchy` has it.
[[nodiscard]] int openLinuxHierarchy(std::string_view path, HierarchyOptions options,
                                     std::unique_ptr<FileHierarchy>& hierarchy);

}  // namespace vornix
