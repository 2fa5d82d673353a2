#include "tests/fakes/FakeStandardDirectories.h"

#include <algorithm>

namespace vornix::fakes {

FakeStandardDirectories::FakeStandardDirectories() {
  folders[{NSLibraryDirectory, NSUserDomainMask}] = {"/home/ada/Library"};
  folders[{NSLibraryDirectory, NSLocalDomainMask}] = {"/Library"};
  folders[{NSCachesDirectory, NSUserDomainMask}] = {"/home/ada/.cache"};
  folders[{NSCachesDirectory, NSLocalDomainMask}] = {"/var/cache"};
  folders[{NSApplicationSupportDirectory, NSUserDomainMask}] = {"/home/ada/.local/share"};
  folders[{NSApplicationSupportDirectory, NSLocalDomainMask}] = {"/usr/local/share"};
  folders[{NSDownloadsDirectory, NSUserDomainMask}] = {"/home/ada/Downloads"};
}

std::string FakeStandardDirectories::homeDirectory() const {
  const std::lock_guard lock(mutex_);
  ++homeRequests_;
  return home;
}

std::optional<std::string> FakeStandardDirectories::homeDirectoryForUser(
    std::string_view user) const {
  const auto found = homesOfUsers.find(user);
  return found == homesOfUsers.end() ? std::nullopt : std::optional(found->second);
}

std::string FakeStandardDirectories::temporaryDirectory() const {
  const std::lock_guard lock(mutex_);
  ++temporaryRequests_;
  return temporary;
}

std::vector<std::string> FakeStandardDirectories::directories(
    NSSearchPathDirectory kind, NSSearchPathDomainMask domains) const {
  const std::lock_guard lock(mutex_);
  ++searches_[{kind, domains}];
  std::vector<std::string> paths;
  for (const NSSearchPathDomainMask domain : {NSUserDomainMask, NSLocalDomainMask}) {
    const auto found = folders.find({kind, domain});
    if ((domains & domain) == 0 || found == folders.end()) continue;
    paths.insert(paths.end(), found->second.begin(), found->second.end());
  }
  return paths;
}

std::size_t FakeStandardDirectories::confstr(int name, std::span<char> buffer) const {
  const std::lock_guard lock(mutex_);
  ++configurationRequests_;
  const auto found = configuration.find(name);
  if (found == configuration.end()) return 0;
  const std::string& text = found->second;
  if (!buffer.empty()) {
    const std::size_t length = std::min(text.size(), buffer.size() - 1);
    std::copy_n(text.begin(), length, buffer.begin());
    buffer[length] = '\0';
  }
  return text.size() + 1;
}

int FakeStandardDirectories::homeRequests() const {
  const std::lock_guard lock(mutex_);
  return homeRequests_;
}

int FakeStandardDirectories::temporaryRequests() const {
  const std::lock_guard lock(mutex_);
  return temporaryRequests_;
}

int FakeStandardDirectories::searches(NSSearchPathDirectory kind,
                                      NSSearchPathDomainMask domains) const {
  const std::lock_guard lock(mutex_);
  const auto found = searches_.find({kind, domains});
  return found == searches_.end() ? 0 : found->second;
}

int FakeStandardDirectories::configurationRequests() const {
  const std::lock_guard lock(mutex_);
  return configurationRequests_;
}

}  // namespace vornix::fakes
