#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <iterator>

#include "platform/system/NSFileHandle.h"
#include "tests/contract/support/ForkedProcess.h"
#include "tests/support/ScratchFolder.h"

namespace vornix {
namespace {

std::string readFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

std::shared_ptr<NSFileHandle> open(const std::string& path) {
  return NSFileHandle::openForUpdatingAtEnd(path, 0666);
}

int lowestFreeDescriptor() {
  const int descriptor = dup(STDERR_FILENO);
  close(descriptor);
  return descriptor;
}

// Lets files of this process grow to so many bytes: a disk that fills up.
class SizeLimit {
 public:
  explicit SizeLimit(rlim_t bytes) {
    EXPECT_EQ(getrlimit(RLIMIT_FSIZE, &previous_), 0);
    const rlimit tight{bytes, previous_.rlim_max};
    EXPECT_EQ(setrlimit(RLIMIT_FSIZE, &tight), 0);
  }
  SizeLimit(const SizeLimit&) = delete;
  SizeLimit& operator=(const SizeLimit&) = delete;
  ~SizeLimit() { setrlimit(RLIMIT_FSIZE, &previous_); }

 private:
  rlimit previous_{};
};

class LinuxUpdatingFileHandle : public testing::Test {
 protected:
  [[nodiscard]] std::string path(std::string_view name) const { return folder_.path(name); }
  tests::ScratchFolder folder_;
};

TEST_F(LinuxUpdatingFileHandle, MakesTheFileWithTheModeLessTheMask) {
  const auto previous = umask(027);
  EXPECT_NE(open(path("new")), nullptr);
  umask(previous);
  struct stat status {};
  ASSERT_EQ(stat(path("new").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777U, 0640U);
  EXPECT_EQ(status.st_size, 0);
}

TEST_F(LinuxUpdatingFileHandle, ReadsWritesAppendsAndStandsAtTheEnd) {
  folder_.write("old", "12345");
  const int descriptor = lowestFreeDescriptor();
  const auto handle = open(path("old"));
  ASSERT_NE(handle, nullptr);
  const int flags = fcntl(descriptor, F_GETFL);
  EXPECT_EQ(flags & O_ACCMODE, O_RDWR);
  EXPECT_NE(flags & O_APPEND, 0);
  EXPECT_EQ(lseek(descriptor, 0, SEEK_CUR), 5);
  EXPECT_EQ(fcntl(descriptor, F_GETFD) & FD_CLOEXEC, FD_CLOEXEC);
}

TEST_F(LinuxUpdatingFileHandle, ClosesTheFileWithTheHandle) {
  const int before = lowestFreeDescriptor();
  open(path("closed")).reset();
  EXPECT_EQ(lowestFreeDescriptor(), before);
}

TEST_F(LinuxUpdatingFileHandle, FollowsALinkAndMakesTheFileOfOneThatDangles) {
  folder_.write("target", "a");
  ASSERT_EQ(symlink("target", path("link").c_str()), 0);
  ASSERT_EQ(symlink("made", path("dangling").c_str()), 0);
  open(path("link"))->writeData("b");
  open(path("dangling"))->writeData("c");
  EXPECT_EQ(readFile(path("target")), "ab");
  EXPECT_EQ(readFile(path("made")), "c");
}

TEST_F(LinuxUpdatingFileHandle, IsNullForALinkThatLeadsNowhereOrInACircle) {
  ASSERT_EQ(symlink("missing/file", path("nowhere").c_str()), 0);
  ASSERT_EQ(symlink("circle", path("circle").c_str()), 0);
  EXPECT_EQ(open(path("nowhere")), nullptr);
  EXPECT_EQ(open(path("circle")), nullptr);
}

TEST_F(LinuxUpdatingFileHandle, IsNullForAFifoAtBothOfWhoseEndsNobodyWaits) {
  ASSERT_EQ(mkfifo(path("fifo").c_str(), 0666), 0);
  EXPECT_EQ(open(path("fifo")), nullptr);
  const int reader = ::open(path("fifo").c_str(), O_RDONLY | O_NONBLOCK);
  EXPECT_EQ(open(path("fifo")), nullptr);
  close(reader);
}

TEST_F(LinuxUpdatingFileHandle, IsNullForADeviceASocketAndAFolder) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  const auto name = path("socket");
  ASSERT_LT(name.size(), sizeof address.sun_path);
  std::copy(name.begin(), name.end(), address.sun_path);
  const int socket = ::socket(AF_UNIX, SOCK_STREAM, 0);
  ASSERT_EQ(bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
  for (const auto& each :
       {std::string("/dev/full"), std::string("/dev/null"), name, folder_.path(), name + "/x"}) {
    EXPECT_EQ(open(each), nullptr) << each;
  }
  close(socket);
}

TEST_F(LinuxUpdatingFileHandle, IsNullForAFileThatMayNotBeWritten) {
  chmod(folder_.path().c_str(), 0755);
  chmod(folder_.write("readable", "kept").c_str(), 0444);
  chmod(folder_.write("writable", "kept").c_str(), 0222);
  const contract::ForkedProcess person([this] {
    // Nobody's rights, where root would have all.
    if (geteuid() == 0 && setuid(65534) != 0) _exit(2);
    const bool refused = open(path("readable")) == nullptr && open(path("writable")) == nullptr;
    _exit(refused ? 0 : 1);
  });
  EXPECT_EQ(person.awaitEnd(), 0);
  EXPECT_EQ(readFile(path("readable")), "kept");
  chmod(path("writable").c_str(), 0644);
  EXPECT_EQ(readFile(path("writable")), "kept");
}

TEST_F(LinuxUpdatingFileHandle, GoesOnWritingToAFileThatWasRemovedOrMadeUnwritable) {
  folder_.write("log", "");
  const auto handle = open(path("log"));
  chmod(path("log").c_str(), 0444);
  EXPECT_NO_THROW(handle->writeData("a"));
  EXPECT_EQ(readFile(path("log")), "a");
  ASSERT_EQ(unlink(path("log").c_str()), 0);
  EXPECT_NO_THROW(handle->writeData("b"));
  EXPECT_NE(access(path("log").c_str(), F_OK), 0);
}

TEST_F(LinuxUpdatingFileHandle, AppendsAgainAtTheEndAfterSomebodyEmptiedTheFile) {
  const auto handle = open(path("log"));
  handle->writeData("before\n");
  ASSERT_EQ(truncate(path("log").c_str(), 0), 0);
  handle->writeData("after\n");
  EXPECT_EQ(readFile(path("log")), "after\n");
}

TEST_F(LinuxUpdatingFileHandle, ThrowsOnAFullDiskAndKeepsWhatWasCutShortApart) {
  const auto handle = open(path("log"));
  handle->writeData("one\n");
  {
    const SizeLimit limit(7);
    EXPECT_THROW(handle->writeData("second\n"), NSFileHandleOperationException);
    EXPECT_THROW(handle->writeData("third\n"), NSFileHandleOperationException);
  }
  EXPECT_EQ(readFile(path("log")), "one\nsec");
  handle->writeData("fourth\n");
  handle->writeData("fifth\n");
  EXPECT_EQ(readFile(path("log")), "one\nsec\nfourth\nfifth\n");
}

TEST_F(LinuxUpdatingFileHandle, KeepsLinesApartHoweverLittleTheDiskTakes) {
  for (rlim_t room = 0; room <= 12; ++room) {
    const auto log = path("log" + std::to_string(room));
    const auto handle = open(log);
    {
      const SizeLimit limit(room);
      for (int count = 0; count < 3; ++count) {
        try {
          handle->writeData("ab\n");
        } catch (const NSFileHandleOperationException&) {
          continue;
        }
      }
    }
    handle->writeData("end\n");
    const std::string contents = readFile(log);
    ASSERT_GE(contents.size(), 4U);
    EXPECT_TRUE(contents == "end\n" || contents.ends_with("\nend\n")) << room << contents;
  }
}

}  // namespace
}  // namespace vornix
