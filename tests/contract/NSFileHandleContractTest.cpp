#include "platform/system/NSFileHandle.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <thread>
#include <vector>

#include "tests/fakes/FakeFileHandle.h"
#include "tests/support/ScratchFolder.h"

namespace vornix {
namespace {

// Where the files of a suite live and how they are read back.
class FileBackend {
 public:
  virtual ~FileBackend() = default;
  [[nodiscard]] virtual std::string folder() const = 0;
  virtual std::shared_ptr<NSFileHandle> open(std::string_view path) = 0;
  virtual std::shared_ptr<NSFileHandle> openForUpdating(std::string_view path) = 0;
  virtual std::shared_ptr<NSFileHandle> openExisting(std::string_view path) = 0;
  virtual std::string contents(const std::string& path) = 0;
};

class FakeBackend final : public FileBackend {
 public:
  FakeBackend() { files_.addFolder(folder()); }
  [[nodiscard]] std::string folder() const override { return "/fake"; }
  std::shared_ptr<NSFileHandle> open(std::string_view path) override {
    return files_.openForAppending(path, 0644);
  }
  std::shared_ptr<NSFileHandle> openForUpdating(std::string_view path) override {
    return files_.openForAppending(path, 0644);
  }
  std::shared_ptr<NSFileHandle> openExisting(std::string_view path) override {
    return files_.openForUpdating(path);
  }
  std::string contents(const std::string& path) override {
    return files_.fileAtPath(path)->contents;
  }

 private:
  fakes::FakeFiles files_;
};

class LinuxBackend final : public FileBackend {
 public:
  [[nodiscard]] std::string folder() const override { return folder_.path(); }
  std::shared_ptr<NSFileHandle> open(std::string_view path) override {
    return NSFileHandle::openForAppending(path, 0644);
  }
  std::shared_ptr<NSFileHandle> openForUpdating(std::string_view path) override {
    return NSFileHandle::openForUpdatingAtEnd(path, 0644);
  }
  std::shared_ptr<NSFileHandle> openExisting(std::string_view path) override {
    return NSFileHandle::fileHandleForUpdatingAtPath(path);
  }
  std::string contents(const std::string& path) override {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

 private:
  tests::ScratchFolder folder_;
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

TYPED_TEST(NSFileHandleContract, OpenedForUpdatingAppendsToWhatOthersAppend) {
  const auto path = this->file("updated");
  const auto first = this->backend_.openForUpdating(path);
  this->backend_.open(path)->writeData("b");
  const auto second = this->backend_.openForUpdating(path);
  first->writeData("c");
  second->writeData("d");
  first->writeData("");
  EXPECT_EQ(this->backend_.contents(path), "bcd");
  EXPECT_EQ(this->backend_.openForUpdating(this->file("missing/log")), nullptr);
  EXPECT_EQ(this->backend_.openForUpdating(this->backend_.folder()), nullptr);
  EXPECT_EQ(this->backend_.openForUpdating(""), nullptr);
  EXPECT_EQ(this->backend_.openForUpdating(this->file(std::string("cut\0off", 7))), nullptr);
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

TYPED_TEST(NSFileHandleContract, OpensOnlyWhatExistsForUpdating) {
  EXPECT_EQ(this->backend_.openExisting(this->file("missing")), nullptr);
  EXPECT_EQ(this->backend_.openExisting(this->backend_.folder()), nullptr);
  EXPECT_EQ(this->backend_.openExisting(""), nullptr);
  EXPECT_EQ(this->backend_.openExisting(std::string_view("\0", 1)), nullptr);
}

TYPED_TEST(NSFileHandleContract, CutsAFileAndFillsItUp) {
  const auto path = this->file("cut");
  this->backend_.open(path)->writeData("0123456789");
  const auto handle = this->backend_.openExisting(path);
  ASSERT_NE(handle, nullptr);
  handle->truncateFileAtOffset(4);
  EXPECT_EQ(this->backend_.contents(path), "0123");
  handle->writeData("x");
  EXPECT_EQ(this->backend_.contents(path), "0123x");
  handle->truncateFileAtOffset(7);
  EXPECT_EQ(this->backend_.contents(path), std::string("0123x\0\0", 7));
  handle->truncateFileAtOffset(0);
  handle->writeData("new");
  EXPECT_EQ(this->backend_.contents(path), "new");
}

TYPED_TEST(NSFileHandleContract, ThrowsOnceItIsClosed) {
  const auto path = this->file("closed");
  for (const auto& handle : {this->backend_.open(path), this->backend_.openForUpdating(path),
                             this->backend_.openExisting(path)}) {
    handle->writeData("x");
    handle->closeFile();
    handle->closeFile();
    EXPECT_THROW(handle->writeData("y"), NSFileHandleOperationException);
    EXPECT_THROW(handle->truncateFileAtOffset(0), NSFileHandleOperationException);
  }
}

}  // namespace
}  // namespace vornix
