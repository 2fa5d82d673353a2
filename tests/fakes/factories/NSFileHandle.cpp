#include "platform/system/NSFileHandle.h"

#include "tests/fakes/FakeFileHandle.h"

namespace vornix {

fakes::FakeFiles& fakes::processFiles() {
  static auto& files = *new FakeFiles;
  return files;
}

std::shared_ptr<NSFileHandle> NSFileHandle::fileHandleWithStandardOutput() {
  return fakes::processFiles().standardOutput;
}

std::shared_ptr<NSFileHandle> NSFileHandle::fileHandleWithStandardError() {
  return fakes::processFiles().standardError;
}

std::shared_ptr<NSFileHandle> NSFileHandle::openForAppending(std::string_view path,
                                                             std::uint32_t mode) {
  return fakes::processFiles().openForAppending(path, mode);
}

std::shared_ptr<NSFileHandle> NSFileHandle::openForUpdatingAtEnd(std::string_view path,
                                                                 std::uint32_t mode) {
  return fakes::processFiles().openForAppending(path, mode);
}

std::shared_ptr<NSFileHandle> NSFileHandle::fileHandleForUpdatingAtPath(std::string_view path) {
  return fakes::processFiles().openForUpdating(path);
}

}  // namespace vornix
