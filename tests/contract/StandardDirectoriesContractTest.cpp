#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <string>

#include "platform/files/StandardDirectories.h"
#include "tests/fakes/FakeStandardDirectories.h"
#include "tests/support/ScratchFolder.h"

namespace vornix::contract {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class FakeDirectoriesWorld {
 public:
  [[nodiscard]] const StandardDirectories& directories() const { return directories_; }
  [[nodiscard]] std::string home() const { return directories_.home; }

 private:
  fakes::FakeStandardDirectories directories_;
};

// The process's own, with a home of its own and nothing else set.
class LinuxDirectoriesWorld {
 public:
  LinuxDirectoriesWorld() {
    setenv("HOME", home_.path().c_str(), 1);
    for (const char* name : {"TMPDIR", "XDG_CACHE_HOME", "XDG_DATA_HOME", "XDG_CONFIG_HOME"})
      unsetenv(name);
  }
  [[nodiscard]] static const StandardDirectories& directories() {
    return sharedStandardDirectories();
  }
  [[nodiscard]] std::string home() const { return home_.path(); }

 private:
  tests::ScratchFolder home_;
};

template <typename World>
class StandardDirectoriesContract : public testing::Test {
 protected:
  [[nodiscard]] const StandardDirectories& directories() const { return world_.directories(); }
  [[nodiscard]] std::string inHome(const std::string& path) const { return world_.home() + path; }

  World world_;
};

using Worlds = testing::Types<FakeDirectoriesWorld, LinuxDirectoriesWorld>;
TYPED_TEST_SUITE(StandardDirectoriesContract, Worlds);

TYPED_TEST(StandardDirectoriesContract, KnowsTheFoldersOfEachKindAndDomain) {
  struct Row {
    NSSearchPathDirectory kind;
    std::string user;
    std::string local;
  };
  const Row rows[] = {{NSLibraryDirectory, "/Library", "/Library"},
                      {NSCachesDirectory, "/.cache", "/var/cache"},
                      {NSApplicationSupportDirectory, "/.local/share", "/usr/local/share"}};
  for (const Row& row : rows) {
    const auto& all = this->directories();
    const std::string user = this->inHome(row.user);
    EXPECT_THAT(all.directories(row.kind, NSUserDomainMask), ElementsAre(user));
    EXPECT_THAT(all.directories(row.kind, NSLocalDomainMask), ElementsAre(row.local));
    EXPECT_THAT(all.directories(row.kind, 3), ElementsAre(user, row.local));
    EXPECT_THAT(all.directories(row.kind, 65535), ElementsAre(user, row.local));
  }
}

TYPED_TEST(StandardDirectoriesContract, KnowsDownloadsOfThePersonOnly) {
  EXPECT_THAT(this->directories().directories(NSDownloadsDirectory, NSUserDomainMask),
              ElementsAre(this->inHome("/Downloads")));
  EXPECT_THAT(this->directories().directories(NSDownloadsDirectory, NSLocalDomainMask), IsEmpty());
}

TYPED_TEST(StandardDirectoriesContract, KnowsNothingOfOtherKindsAndDomains) {
  for (const NSSearchPathDirectory kind : {0U, 1U, 2U, 6U, 7U, 99U, 0xFFFFFFFFU})
    EXPECT_THAT(this->directories().directories(kind, 65535), IsEmpty()) << kind;
  for (const NSSearchPathDomainMask domain : {0U, 4U, 8U, 12U, 0xFFFFFFFCU})
    EXPECT_THAT(this->directories().directories(NSLibraryDirectory, domain), IsEmpty()) << domain;
}

TYPED_TEST(StandardDirectoriesContract, KnowsTheHomeAndTheTemporaryFolder) {
  EXPECT_EQ(this->directories().homeDirectory(), this->inHome(""));
  EXPECT_EQ(this->directories().temporaryDirectory(), "/tmp/");
}

TYPED_TEST(StandardDirectoriesContract, KnowsNoHomeOfAnAccountThatDoesNotExist) {
  for (const char* user : {"", "no such account", "../root", "\xFF"})
    EXPECT_EQ(this->directories().homeDirectoryForUser(user), std::nullopt) << user;
}

TYPED_TEST(StandardDirectoriesContract, HasNoConfiguredFolderForCaches) {
  std::array<char, 1024> buffer{};
  EXPECT_EQ(this->directories().confstr(65538, buffer), 0U);
}

}  // namespace
}  // namespace vornix::contract
