#pragma once

#include <cstddef>
#include <map>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "platform/files/StandardDirectories.h"

namespace vornix::fakes {

// Folders as a test wants them; a fresh one has a home like any other. Set before threads read it.
class FakeStandardDirectories final : public StandardDirectories {
 public:
  FakeStandardDirectories();

  std::string home = "/home/ada";
  std::string temporary = "/tmp/";
  std::map<std::string, std::string, std::less<>> homesOfUsers;
  // By kind and a single domain.
  std::map<std::pair<NSSearchPathDirectory, NSSearchPathDomainMask>, std::vector<std::string>>
      folders;
  std::map<int, std::string> configuration;

  [[nodiscard]] std::string homeDirectory() const override;
  [[nodiscard]] std::optional<std::string> homeDirectoryForUser(
      std::string_view user) const override;
  [[nodiscard]] std::string temporaryDirectory() const override;
  [[nodiscard]] std::vector<std::string> directories(NSSearchPathDirectory kind,
                                                     NSSearchPathDomainMask domains) const override;
  [[nodiscard]] std::size_t confstr(int name, std::span<char> buffer) const override;

  // How often each was asked for.
  [[nodiscard]] int homeRequests() const;
  [[nodiscard]] int temporaryRequests() const;
  [[nodiscard]] int searches(NSSearchPathDirectory kind, NSSearchPathDomainMask domains) const;
  [[nodiscard]] int configurationRequests() const;

 private:
  mutable std::mutex mutex_;
  mutable int homeRequests_ = 0;
  mutable int temporaryRequests_ = 0;
  mutable int configurationRequests_ = 0;
  mutable std::map<std::pair<NSSearchPathDirectory, NSSearchPathDomainMask>, int> searches_;
};

// The one that `sharedStandardDirectories` answers on the fake platform.
FakeStandardDirectories& standardDirectories();

}  // namespace vornix::fakes
