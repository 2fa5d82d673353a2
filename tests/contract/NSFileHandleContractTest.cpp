#include "platform/system/NSFileHandle.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <thread>
#include <vector>

#include "tests/fakes/FakeFileHandle.h"

namespace vornix {
namespace {

// Where the files of a suite live and how they are read back.
class FileBackend {
 public:
  virtual ~FileBackend() = default;
  [[nodiscard]] virtual std::string folder() const = 0;
  virtual std::shared_ptr<NSFileHandle> open(std::string_view path) = 0;
  virtual std::string contents(const std::string& path) = 0;
};

class FakeBackend final : public FileBackend {
 public:
  FakeBackend() { files_.addFolder(folder()); }
  [[nodiscard]] std::string folder() const override { return "/fake"; }
  std::shared_ptr<NSFileHandle> open(std::string_view path) override {
    return files_.openForAppending(path, 0644);
  }
  std::string contents(const std::string& path) override {
    return files_.fileAtPath(path)->contents;
  }

 private:
  fakes::FakeFiles files_;
};

std::string readFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

class TemporaryFolder {
 public:
  TemporaryFolder() { path_ = mkdtemp(path_.data()); }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  ~TemporaryFolder() { std::filesystem::remove_all(path_); }
  [[nodiscard]] std::string file(const std::string& name) const { return path_ + "/" + name; }
  [[nodiscard]] const std::string& path() const { return path_; }

 private:
  std::string path_ = std::filesystem::temp_directory_path() / "vornix-file-handle-XXXXXX";
};

class LinuxBackend final : public FileBackend {
 public:
  [[nodiscard]] std::string folder() const override { return folder_.path(); }
  std::shared_ptr<NSFileHandle> open(std::string_view path) override {
    return NSFileHandle::openForAppending(path, 0644);
  }
  std::string contents(const std::string& path) override { return readFile(path); }

 private:
  TemporaryFolder folder_;
};

template <typename Backend>
class NSFileHandleContract : public testing::Test {
 protected:
  [[nodiscard]] std::string file(const std::string& name) const {
    return backend_.folder() + "/" + name;
  }
  Backend backend_;
};

using Backends = testing::Types<FakeBackend, LinuxBackend>;
TYPED_TEST_SUITE(NSFileHandleContract, Backends);

TYPED_TEST(NSFileHandleContract, CreatesAMissingFileAndAppendsToAnOldOne) {
  const auto path = this->file("log");
  this->backend_.open(path)->writeData("one\n");
  this->backend_.open(path)->writeData("two\n");
  EXPECT_EQ(this->backend_.contents(path), "one\ntwo\n");
}

TYPED_TEST(NSFileHandleContract, WritesEveryByteAsItIs) {
  const auto path = this->file("bytes");
  const std::string bytes("\0\xFF\n\r\n", 5);
  const auto handle = this->backend_.open(path);
  handle->writeData(bytes);
  handle->writeData("");
  EXPECT_EQ(this->backend_.contents(path), bytes);
}

TYPED_TEST(NSFileHandleContract, AppendsThroughTwoHandlesOfOneFile) {
  const auto path = this->file("shared");
  const auto first = this->backend_.open(path);
  const auto second = this->backend_.open(path);
  first->writeData("a");
  second->writeData("b");
  first->writeData("c");
  EXPECT_EQ(this->backend_.contents(path), "abc");
}

TYPED_TEST(NSFileHandleContract, CannotBeOpenedWhereThereIsNoFolderOrNoFile) {
  EXPECT_EQ(this->backend_.open(this->file("missing/log")), nullptr);
  EXPECT_EQ(this->backend_.open(this->backend_.folder()), nullptr);
  EXPECT_EQ(this->backend_.open(""), nullptr);
  EXPECT_EQ(this->backend_.open(this->file(std::string("cut\0off", 7))), nullptr);
}

TYPED_TEST(NSFileHandleContract, KeepsTheWritesOfSeveralThreadsWhole) {
  const auto path = this->file("threads");
  const auto handle = this->backend_.open(path);
  const std::string line(9999, 'x');
  std::vector<std::thread> threads;
  for (int index = 0; index < 4; ++index) {
    threads.emplace_back([&] {
      for (int count = 0; count < 20; ++count) handle->writeData(line + "\n");
    });
  }
  for (auto& thread : threads) thread.join();
  std::string expected;
  for (int count = 0; count < 80; ++count) expected += line + "\n";
  EXPECT_EQ(this->backend_.contents(path), expected);
}

int lowestFreeDescriptor() {
  const int descriptor = dup(STDERR_FILENO);
  close(descriptor);
  return descriptor;
}

TEST(LinuxFileHandle, CreatesTheFileWithTheModeAndClosesItOnExec) {
  const TemporaryFolder folder;
  const int descriptor = lowestFreeDescriptor();
  const auto previous = umask(0);
  const auto handle = NSFileHandle::openForAppending(folder.file("mode"), 0xFFFF0000U | 0640);
  umask(previous);
  ASSERT_NE(handle, nullptr);
  struct stat status {};
  ASSERT_EQ(stat(folder.file("mode").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777U, 0640U);
  EXPECT_EQ(fcntl(descriptor, F_GETFD) & FD_CLOEXEC, FD_CLOEXEC);
}

TEST(LinuxFileHandle, ClosesTheFileWithTheHandle) {
  const TemporaryFolder folder;
  const int before = lowestFreeDescriptor();
  NSFileHandle::openForAppending(folder.file("closed"), 0644).reset();
  EXPECT_EQ(lowestFreeDescriptor(), before);
}

TEST(LinuxFileHandle, NeverWaitsForTheReaderOfAFifo) {
  const TemporaryFolder folder;
  ASSERT_EQ(mkfifo(folder.file("fifo").c_str(), 0600), 0);
  EXPECT_EQ(NSFileHandle::openForAppending(folder.file("fifo"), 0644), nullptr);
}

TEST(LinuxFileHandle, ThrowsInsteadOfDyingWhenTheReaderIsGone) {
  const TemporaryFolder folder;
  const auto path = folder.file("fifo");
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
  const TemporaryFolder folder;
  const auto handle = NSFileHandle::openForAppending(folder.file("limited"), 0644);
  rlimit previous{};
  getrlimit(RLIMIT_FSIZE, &previous);
  const rlimit tight{4, previous.rlim_max};
  ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &tight), 0);
  EXPECT_THROW(handle->writeData("123456"), NSFileHandleOperationException);
  setrlimit(RLIMIT_FSIZE, &previous);
  EXPECT_EQ(readFile(folder.file("limited")), "1234");
}

TEST(LinuxFileHandle, RepeatsShortWritesUntilASlowReaderHasAll) {
  const TemporaryFolder folder;
  const auto path = folder.file("fifo");
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
