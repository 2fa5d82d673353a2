#include "tests/contract/support/Walks.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string_view>

namespace vornix::contract {
namespace {

bool isEnd(HierarchyKind kind) {
  return kind == HierarchyKind::folderEnd || kind == HierarchyKind::unreadableFolder;
}

bool liesDirectlyIn(std::string_view path, std::string_view folder) {
  if (!path.starts_with(folder)) return false;
  path.remove_prefix(folder.size());
  if (!folder.ends_with('/')) {
    if (!path.starts_with('/')) return false;
    path.remove_prefix(1);
  }
  return !path.empty() && path.find('/') == std::string_view::npos;
}

}  // namespace

Steps stepsOf(FileHierarchy& hierarchy, const std::vector<std::string>& skipped) {
  Steps steps;
  while (const HierarchyEntry* entry = hierarchy.read()) {
    EXPECT_TRUE(entry->path.ends_with(entry->name)) << entry->path << ": " << entry->name;
    steps.push_back({entry->kind, std::string(entry->path), entry->level});
    if (std::ranges::find(skipped, entry->name) != skipped.end()) hierarchy.skip();
  }
  EXPECT_EQ(hierarchy.read(), nullptr);
  return steps;
}

Steps sortedWalk(const NSFileManager& files, std::string_view path, HierarchyOptions options,
                 const std::vector<std::string>& skipped) {
  const auto hierarchy = files.hierarchyAtPath(path, options);
  if (!hierarchy) return {};
  const Steps steps = stepsOf(*hierarchy, skipped);
  EXPECT_EQ(faultIn(steps), "");
  return sorted(steps);
}

Steps sorted(Steps steps) {
  std::ranges::sort(steps);
  return steps;
}

std::string faultIn(const Steps& steps) {
  std::vector<std::string_view> folders;
  for (const Step& step : steps) {
    if (isEnd(step.kind)) {
      if (folders.empty() || folders.back() != step.path) return "ends without start: " + step.path;
      folders.pop_back();
    } else if (!folders.empty() && !liesDirectlyIn(step.path, folders.back())) {
      return "not in " + std::string(folders.back()) + ": " + step.path;
    }
    if (step.level != folders.size()) return "wrong level: " + step.path;
    if (step.kind == HierarchyKind::folder) folders.emplace_back(step.path);
  }
  return folders.empty() ? "" : "without end: " + std::string(folders.back());
}

}  // namespace vornix::contract
