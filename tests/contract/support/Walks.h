#pragma once

#include <compare>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "platform/files/FileHierarchy.h"
#include "platform/files/NSFileManager.h"

namespace vornix::contract {

// An entry of a walk, kept.
struct Step {
  HierarchyKind kind = HierarchyKind::error;
  std::string path{};
  std::size_t level = 0;

  friend auto operator<=>(const Step&, const Step&) = default;
  friend void PrintTo(const Step& step, std::ostream* stream) {
    *stream << static_cast<int>(step.kind) << " " << step.path << " (" << step.level << ")";
  }
};
using Steps = std::vector<Step>;

// All entries; folders named in `skipped` are not entered.
[[nodiscard]] Steps stepsOf(FileHierarchy& hierarchy, const std::vector<std::string>& skipped = {});
// A walk of the path, in no particular order.
[[nodiscard]] Steps sortedWalk(const NSFileManager& files, std::string_view path,
                               HierarchyOptions options,
                               const std::vector<std::string>& skipped = {});
[[nodiscard]] Steps sorted(Steps steps);
// Whether every folder holds its items between its two entries. What is wrong else.
[[nodiscard]] std::string faultIn(const Steps& steps);

}  // namespace vornix::contract
