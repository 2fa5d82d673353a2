#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <fstream>
#include <functional>
#include <iterator>
#include <thread>
#include <vector>

#include "platform/system/NSFileHandle.h"
#include "tests/support/ScratchFolder.h"

namespace vornix {
namespace {

std::string readFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

int lowestFreeDescriptor() {
  const int descriptor = dup(STDERR_FILENO);
  close(descriptor);
  return descriptor;
}

TEST(LinuxFileHandle, CreatesTheFileWithTheModeAndClosesItOnExec) {
  const tests::ScratchFolder folder;
  const int descriptor = lowestFreeDescriptor();
  const auto previous = umask(0);
  const auto handle = NSFileHandle::openForAppending(folder.path("mode"), 0xFFFF0000U | 0640);
  umask(previous);
  ASSERT_NE(handle, nullptr);
  struct stat status {};
  ASSERT_EQ(stat(folder.path("mode").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777U, 0640U);
  EXPECT_EQ(fcntl(descriptor, F_GETFD) & FD_CLOEXEC, FD_CLOEXEC);
}

TEST(LinuxFileHandle, ClosesTheFileWithTheHandle) {
  const tests::ScratchFolder folder;
  const int before = lowestFreeDescriptor();
  NSFileHandle::openForAppending(folder.path("closed"), 0644).reset();
  EXPECT_EQ(lowestFreeDescriptor(), before);
}

TEST(LinuxFileHandle, NeverWaitsForTheReaderOfAFifo) {
  const tests::ScratchFolder folder;
  ASSERT_EQ(mkfifo(folder.path("fifo").c_str(), 0600), 0);
  EXPECT_EQ(NSFileHandle::openForAppending(folder.path("fifo"), 0644), nullptr);
}

TEST(LinuxFileHandle, ThrowsInsteadOfDyingWhenTheReaderIsGone) {
  const tests::ScratchFolder folder;
  const auto path = folder.path("fifo");
  ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
  ASSERT_NE(std::signal(SIGPIPE, SIG_DFL), SIG_ERR);
  const int reader = open(path.c_str(), O_RDONLY | O_NONBLOCK);
  const auto handle = NSFileHandle::openForAppending(path, 0644);
  ASSERT_NE(handle, nullptr);
  EXPECT_NO_THROW(handle->writeData("read\n"));
  close(reader);
  EXPECT_THROW(handle->writeData("lost\n"), NSFileHandleOperationException);
  EXPECT_THROW(handle->writeData("lost\n"), NSFileHandleOperationException);
  sigset_t pending;
  sigpending(&pending);
  EXPECT_EQ(sigismember(&pending, SIGPIPE), 0);
  sigset_t blocked;
  pthread_sigmask(SIG_SETMASK, nullptr, &blocked);
  EXPECT_EQ(sigismember(&blocked, SIGPIPE), 0);
}

TEST(LinuxFileHandle, ThrowsOnAFullDisk) {
  const auto handle = NSFileHandle::openForAppending("/dev/full", 0644);
  ASSERT_NE(handle, nullptr);
  try {
    handle->writeData("x");
    FAIL() << "a full device took the byte";
  } catch (const NSFileHandleOperationException& exception) {
    EXPECT_NE(std::string(exception.what()).find("No space"), std::string::npos)
        << exception.what();
  }
}

TEST(LinuxFileHandle, ThrowsInsteadOfDyingBeyondTheLimitOfFileSizes) {
  const tests::ScratchFolder folder;
  const auto handle = NSFileHandle::openForAppending(folder.path("limited"), 0644);
  rlimit previous{};
  getrlimit(RLIMIT_FSIZE, &previous);
  const rlimit tight{4, previous.rlim_max};
  ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &tight), 0);
  EXPECT_THROW(handle->writeData("123456"), NSFileHandleOperationException);
  setrlimit(RLIMIT_FSIZE, &previous);
  EXPECT_EQ(readFile(folder.path("limited")), "1234");
}

TEST(LinuxFileHandle, RepeatsShortWritesUntilASlowReaderHasAll) {
  const tests::ScratchFolder folder;
  const auto path = folder.path("fifo");
  ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
  const int reader = open(path.c_str(), O_RDONLY | O_NONBLOCK);
  auto handle = NSFileHandle::openForAppending(path, 0644);
  fcntl(reader, F_SETFL, 0);
  std::string received;
  std::thread thread([&] {
    std::vector<char> buffer(1000);
    for (ssize_t count = 1; count > 0;) {
      count = read(reader, buffer.data(), buffer.size());
      if (count > 0) received.append(buffer.data(), static_cast<std::size_t>(count));
    }
  });
  const std::string bytes(1000000, 'y');
  handle->writeData(bytes);
  handle.reset();
  thread.join();
  close(reader);
  EXPECT_EQ(received, bytes);
}

// Runs `action` in a child whose standard output is the descriptor; 0 when it said yes.
int inChildWithOutput(int descriptor, const std::function<bool()>& action) {
  // What is still in the buffer would be the child's too, and be written by it at its end.
  std::fflush(stdout);
  const pid_t child = fork();
  if (child == 0) {
    std::signal(SIGPIPE, SIG_DFL);
    if (descriptor >= 0) dup2(descriptor, STDOUT_FILENO);
    if (descriptor < 0) close(STDOUT_FILENO);
    _exit(action() ? 0 : 1);
  }
  int status = 0;
  waitpid(child, &status, 0);
  return status;
}

bool standardOutputThrows() {
  try {
    NSFileHandle::fileHandleWithStandardOutput()->writeData("x\n");
    return false;
  } catch (const NSFileHandleOperationException&) {
    return true;
  }
}

TEST(LinuxFileHandle, SurvivesAStandardOutputThatNobodyReadsOrThatIsClosed) {
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  close(ends[0]);
  EXPECT_EQ(inChildWithOutput(ends[1], standardOutputThrows), 0);
  EXPECT_EQ(inChildWithOutput(-1, standardOutputThrows), 0);
  close(ends[1]);
}

TEST(LinuxFileHandle, WaitsForAStandardOutputThatWasMadeNonBlocking) {
  int ends[2];
  ASSERT_EQ(pipe2(ends, O_NONBLOCK), 0);
  fcntl(ends[0], F_SETFL, 0);
  std::size_t received = 0;
  std::thread reader([&] {
    std::vector<char> buffer(4096);
    for (ssize_t count = 1; count > 0; received += static_cast<std::size_t>(count)) {
      count = read(ends[0], buffer.data(), buffer.size());
    }
  });
  const auto writeMuch = [] {
    NSFileHandle::fileHandleWithStandardOutput()->writeData(std::string(500000, 'z'));
    return true;
  };
  EXPECT_EQ(inChildWithOutput(ends[1], writeMuch), 0);
  close(ends[1]);
  reader.join();
  close(ends[0]);
  EXPECT_EQ(received, 500000U);
}

TEST(LinuxFileHandle, KnowsStandardOutputAndErrorAsOneHandleEach) {
  EXPECT_EQ(NSFileHandle::fileHandleWithStandardOutput(),
            NSFileHandle::fileHandleWithStandardOutput());
  EXPECT_NE(NSFileHandle::fileHandleWithStandardOutput(),
            NSFileHandle::fileHandleWithStandardError());
}

}  // namespace
}  // namespace vornix
