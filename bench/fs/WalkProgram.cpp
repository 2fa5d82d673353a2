#include "bench/fs/WalkProgram.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "fs/NSFileManager+FileModificationsAdditions.h"

namespace vornix::bench {
namespace {

std::size_t systemCallsOf(const std::string& folder, const std::string& journal) {
  if (!runProgram({"strace", "-f", "-o", journal, ownPath(), kWalkCommand, folder})) return 0;
  std::ifstream lines(journal);
  return static_cast<std::size_t>(
      std::count(std::istreambuf_iterator<char>(lines), std::istreambuf_iterator<char>(), '\n'));
}

}  // namespace

int walkAsProgram(const std::string& folder) {
  std::size_t count = 0;
  const bool finished =
      com_orvane_FTSWalkAtPath(NSFileManager::defaultManager(), folder, true,
                               [&count](std::string_view, bool, bool&) { ++count; });
  return finished ? 0 : 1;
}

bool runProgram(const std::vector<std::string>& arguments) {
  std::vector<char*> texts;
  for (const std::string& each : arguments) texts.push_back(const_cast<char*>(each.c_str()));
  texts.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  pid_t child = 0;
  const int error = posix_spawnp(&child, texts[0], &actions, nullptr, texts.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  int status = 0;
  return error == 0 && waitpid(child, &status, 0) == child && status == 0;
}

std::string ownPath() {
  return std::filesystem::read_symlink("/proc/self/exe");
}

std::size_t systemCallsOfWalk(const std::string& folder) {
  const std::string empty = folder + ".empty";
  const std::string journal = folder + ".strace";
  std::filesystem::create_directory(empty);
  const std::size_t all = systemCallsOf(folder, journal);
  const std::size_t around = systemCallsOf(empty, journal);
  std::filesystem::remove(journal);
  return all - std::min(all, around);
}

}  // namespace vornix::bench
