#include "platform/linux/desktop/LinuxFileViewer.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <thread>

#include "platform/base/Diagnostics.h"
#include "platform/base/FileUrl.h"
#include "tests/contract/support/FileManagerProgram.h"
#include "tests/contract/support/LinuxFileViewerWorld.h"

namespace vornix::contract {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;

constexpr const char* kName = "org.freedesktop.FileManager1";

TEST(LinuxFileViewer, HasTheBusStartTheFileManager) {
  const tests::ScratchFolder folder;
  const std::string bell = folder.path("bell");
  ASSERT_EQ(mkfifo(bell.c_str(), 0600), 0);
  const std::string program = folder.write("start", "#!/bin/sh\necho started > \"" + bell + "\"\n");
  ASSERT_EQ(chmod(program.c_str(), 0755), 0);
  LinuxFileViewerWorld world({{.name = kName, .command = program}});
  std::optional<FileManagerProgram> manager;
  const int rings = open(bell.c_str(), O_RDWR | O_CLOEXEC);
  std::thread desktop([&] {
    pollfd poller{.fd = rings, .events = POLLIN, .revents = 0};
    if (poll(&poller, 1, 60000) == 1) manager.emplace();
  });
  EXPECT_TRUE(world.makeViewer(60)->select("/usr/bin"));
  desktop.join();
  close(rings);
  ASSERT_TRUE(manager);
  EXPECT_THAT(manager->asked.events(), ElementsAre("file:///usr/bin"));
}

TEST(LinuxFileViewer, GivesUpOnAFileManagerThatDoesNotAnswer) {
  LinuxFileViewerWorld world;
  world.installOpener();
  // Nobody serves it while this thread waits.
  SessionBus mute(NSRunLoop::mainRunLoop());
  ASSERT_TRUE(mute.requestName(kName, BusNameClaim::exclusive));
  EXPECT_TRUE(world.makeViewer(0.05)->select("/usr/bin"));
  EXPECT_EQ(world.awaitOpened(), "/usr");
}

TEST(LinuxFileViewer, OpensTheFolderWithoutABus) {
  LinuxFileViewerWorld world;
  world.installOpener();
  tests::forgetSessionBus();
  EXPECT_TRUE(world.makeViewer()->select("/usr/bin"));
  EXPECT_EQ(world.awaitOpened(), "/usr");
}

TEST(LinuxFileViewer, SaysWhyNeitherProgramShowsTheFolder) {
  LinuxFileViewerWorld world;
  std::string line;
  setDiagnosticReceiver([&](std::string_view told) { line = told; });
  EXPECT_FALSE(world.makeViewer()->select("/usr/bin"));
  setDiagnosticReceiver({});
  EXPECT_THAT(line, AllOf(HasSubstr("/usr/bin"), HasSubstr(kName), HasSubstr("xdg-open")));
}

TEST(LinuxFileViewer, HandsTheProofOfTheClickToTheFileManager) {
  LinuxFileViewerWorld world;
  const FileManagerProgram manager;
  world.applications.token = "proof";
  const auto viewer = world.makeViewer();
  EXPECT_TRUE(viewer->select("/usr/bin"));
  EXPECT_TRUE(viewer->select("/usr/bin"));
  EXPECT_THAT(manager.tokens.events(), ElementsAre("proof", ""));
}

TEST(LinuxFileViewer, AsksTheFileManagerAlsoWithAProofThatIsNoText) {
  LinuxFileViewerWorld world;
  const FileManagerProgram manager;
  world.applications.token = "\xFF";
  EXPECT_TRUE(world.makeViewer()->select("/usr/bin"));
  EXPECT_THAT(manager.tokens.events(), ElementsAre(""));
}

TEST(LinuxFileViewer, HandsTheProofOfTheClickToTheOpener) {
  LinuxFileViewerWorld world;
  world.installOpener();
  world.applications.token = "proof";
  EXPECT_TRUE(world.makeViewer()->select("/usr/bin"));
  EXPECT_EQ(world.awaitOpened(), "/usr");
  EXPECT_EQ(world.lastToken(), "proof");
}

TEST(LinuxFileViewer, HasTheServiceManagerRunTheOpener) {
  LinuxFileViewerWorld world;
  world.installOpener();
  world.applications.managerRuns = true;
  EXPECT_TRUE(world.makeViewer()->select("/usr/bin"));
  ASSERT_THAT(world.applications.services, SizeIs(1));
  const desktop::TransientService& service = world.applications.services[0];
  EXPECT_EQ(service.program, world.folder.path("programs/xdg-open"));
  EXPECT_THAT(service.arguments, ElementsAre("xdg-open", "/usr"));
  // It is no application, and what it starts must not be taken for one.
  EXPECT_THAT(service.environment, Not(Contains(StartsWith("GIO_LAUNCHED_DESKTOP_FILE"))));
}

TEST(LinuxFileViewer, TakesStepsUpwardsAsTheFileSystemDoes) {
  LinuxFileViewerWorld world;
  const FileManagerProgram manager;
  const std::string root = std::filesystem::canonical(world.folder.path());
  world.folder.write("far/inner/file", "");
  std::filesystem::create_directory_symlink("far/inner", world.folder.path("link"));
  EXPECT_TRUE(world.makeViewer()->select(root + "/link/../inner/./file"));
  // Without such steps a link stays: the person knows the folder by it.
  EXPECT_TRUE(world.makeViewer()->select(root + "/link/file"));
  EXPECT_THAT(manager.asked.events(),
              ElementsAre(*text::fileUrlWithPath(root + "/far/inner/file", false),
                          *text::fileUrlWithPath(root + "/link/file", false)));
}

}  // namespace
}  // namespace vornix::contract
