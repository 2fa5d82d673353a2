#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <climits>
#include <cstdlib>
#include <string>

#include "platform/system/NSProcessInfo.h"
#include "tests/support/ScratchFolder.h"

namespace vornix {
namespace {

std::string pathThatTheKernelTells() {
  std::array<char, PATH_MAX> target{};
  const auto length = readlink("/proc/self/exe", target.data(), target.size());
  return length > 0 ? std::string(target.data(), static_cast<std::size_t>(length)) : std::string();
}

// Whether this program, started by that path, passes the first test below.
bool knowsItselfStartedAs(const std::string& path) {
  const std::string command =
      "exec " + path + " --gtest_filter=ExecutablePath.IsTheOneThatTheKernelTells >/dev/null";
  return std::system(command.c_str()) == 0;
}

std::string folderOf(const std::string& path) {
  return path.substr(0, path.rfind('/'));
}
std::string nameOf(const std::string& path) {
  return path.substr(path.rfind('/') + 1);
}

TEST(ExecutablePath, IsTheOneThatTheKernelTells) {
  EXPECT_EQ(NSProcessInfo::processInfo().executablePath(), pathThatTheKernelTells());
}

TEST(ExecutablePath, IsFreeOfLinksAndDetours) {
  const tests::ScratchFolder scratch;
  const std::string own = pathThatTheKernelTells();
  const std::string toProgram = scratch.path() + "/program";
  const std::string toFolder = scratch.path() + "/folder";
  ASSERT_EQ(symlink(own.c_str(), toProgram.c_str()), 0);
  ASSERT_EQ(symlink(folderOf(own).c_str(), toFolder.c_str()), 0);
  EXPECT_TRUE(knowsItselfStartedAs(own));
  EXPECT_TRUE(knowsItselfStartedAs(toProgram));
  EXPECT_TRUE(knowsItselfStartedAs(toFolder + "/" + nameOf(own)));
  EXPECT_TRUE(knowsItselfStartedAs(folderOf(own) + "/./" + nameOf(own)));
  EXPECT_TRUE(knowsItselfStartedAs(folderOf(own) + "//" + nameOf(own)));
  EXPECT_TRUE(
      knowsItselfStartedAs(folderOf(own) + "/../" + nameOf(folderOf(own)) + "/" + nameOf(own)));
}

TEST(ExecutablePath, IsKnownAfterAStartByARelativePath) {
  const std::string own = pathThatTheKernelTells();
  ASSERT_EQ(chdir(folderOf(own).c_str()), 0);
  EXPECT_TRUE(knowsItselfStartedAs("./" + nameOf(own)));
}

}  // namespace
}  // namespace vornix
