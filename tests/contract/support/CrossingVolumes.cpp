#include "tests/contract/support/CrossingVolumes.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <optional>

namespace vornix::contract {

namespace fs = std::filesystem;

std::int64_t moveCode(LinuxFileWorld& world, const std::string& from, const std::string& to) {
  std::optional<NSError> error;
  const bool isMoved =
      LinuxFileWorld::files().moveItemAtPath(world.path(from), world.path(to), &error);
  EXPECT_EQ(isMoved, !error.has_value());
  return error ? error->code : 0;
}

void setTimes(const std::string& path, time_t accessed, time_t modified) {
  const std::array<timespec, 2> times{timespec{accessed, 123'456'789},
                                      timespec{modified, 987'654'321}};
  EXPECT_EQ(utimensat(AT_FDCWD, path.c_str(), times.data(), AT_SYMLINK_NOFOLLOW), 0) << path;
}

void write(const std::string& path, const std::string& contents) {
  std::ofstream(path, std::ios::binary) << contents;
}

std::set<std::string> namesIn(const std::string& folder) {
  std::set<std::string> names;
  for (const auto& item : fs::directory_iterator(folder)) names.insert(item.path().filename());
  return names;
}

}  // namespace vornix::contract
