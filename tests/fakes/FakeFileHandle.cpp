#include "tests/fakes/FakeFileHandle.h"

#include <utility>

#include "platform/base/PathText.h"

namespace vornix::fakes {

FakeFileHandle::FakeFileHandle(std::shared_ptr<FakeFile> file) : file_(std::move(file)) {}

void FakeFileHandle::writeData(std::string_view bytes) {
  const std::lock_guard lock(file_->mutex);
  requireWorking();
  file_->contents.append(bytes);
}

void FakeFileHandle::truncateFileAtOffset(std::uint64_t offset) {
  const std::lock_guard lock(file_->mutex);
  requireWorking();
  file_->contents.resize(offset);
}

void FakeFileHandle::closeFile() {
  const std::lock_guard lock(file_->mutex);
  isClosed_ = true;
}

void FakeFileHandle::requireWorking() const {
  if (isClosed_) throw NSFileHandleOperationException("the fake file is closed");
  if (file_->failing) throw NSFileHandleOperationException("the fake file refuses to be written");
}

std::string FakeFileHandle::contents() const {
  const std::lock_guard lock(file_->mutex);
  return file_->contents;
}

void FakeFileHandle::clear() {
  const std::lock_guard lock(file_->mutex);
  file_->contents.clear();
}

void FakeFileHandle::failWrites(bool fail) {
  const std::lock_guard lock(file_->mutex);
  file_->failing = fail;
}

FakeFiles::FakeFiles()
    : standardOutput(std::make_shared<FakeFileHandle>()),
      standardError(std::make_shared<FakeFileHandle>()) {}

void FakeFiles::addFolder(std::string_view path) {
  const std::lock_guard lock(mutex_);
  folders_.emplace(path);
}

std::shared_ptr<FakeFileHandle> FakeFiles::openForAppending(std::string_view path,
                                                            std::uint32_t mode) {
  const std::lock_guard lock(mutex_);
  const bool folderExists = folders_.contains(text::deletingLastPathComponent(path));
  const bool nameIsUsable = path.find('\0') == std::string_view::npos && !folders_.contains(path);
  if (!folderExists || !nameIsUsable) return nullptr;
  auto& file = files_[std::string(path)];
  if (file == nullptr) {
    file = std::make_shared<FakeFile>();
    file->mode = mode & 0xFFFFU;
  }
  return std::make_shared<FakeFileHandle>(file);
}

std::shared_ptr<FakeFileHandle> FakeFiles::openForUpdating(std::string_view path) const {
  auto file = fileAtPath(path);
  return file ? std::make_shared<FakeFileHandle>(std::move(file)) : nullptr;
}

std::shared_ptr<FakeFile> FakeFiles::fileAtPath(std::string_view path) const {
  const std::lock_guard lock(mutex_);
  const auto found = files_.find(path);
  return found != files_.end() ? found->second : nullptr;
}

}  // namespace vornix::fakes
