#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <string_view>

#include "platform/system/NSFileHandle.h"

namespace vornix::fakes {

// A file in memory. Handles of one file share its contents.
struct FakeFile {
  std::mutex mutex;
  std::string contents;
  std::uint32_t mode = 0;
  bool failing = false;
};

class FakeFileHandle final : public NSFileHandle {
 public:
  explicit FakeFileHandle(std::shared_ptr<FakeFile> file = std::make_shared<FakeFile>());

  void writeData(std::string_view bytes) override;
  void truncateFileAtOffset(std::uint64_t offset) override;
  void closeFile() override;

  [[nodiscard]] std::string contents() const;
  void clear();
  // From now on writing throws, or no longer.
  void failWrites(bool fail);

 private:
  void requireWorking() const;

  std::shared_ptr<FakeFile> file_;
  // Guarded by the file's mutex.
  bool isClosed_ = false;
};

// The files of a fake machine.
class FakeFiles {
 public:
  FakeFiles();

  const std::shared_ptr<FakeFileHandle> standardOutput;
  const std::shared_ptr<FakeFileHandle> standardError;

  // Files can be made in folders that were added.
  void addFolder(std::string_view path);
  std::shared_ptr<FakeFileHandle> openForAppending(std::string_view path, std::uint32_t mode);
  // Null when nothing was opened for appending there before.
  std::shared_ptr<FakeFileHandle> openForUpdating(std::string_view path) const;
  // Null when nothing was opened there.
  [[nodiscard]] std::shared_ptr<FakeFile> fileAtPath(std::string_view path) const;

 private:
  mutable std::mutex mutex_;
  std::set<std::string, std::less<>> folders_;
  std::map<std::string, std::shared_ptr<FakeFile>, std::less<>> files_;
};

// Those behind `NSFileHandle` on the fake platform.
FakeFiles& processFiles();

}  // namespace vornix::fakes
