#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <string>
#include <string_view>

#include "locations/NSFileManager+DirectoryLocations.h"
#include "tests/fakes/FakeFileTree.h"
#include "tests/fakes/FakeResourceFiles.h"
#include "tests/fakes/ScopedSharedLogger.h"

namespace vornix {
namespace {

using namespace std::string_view_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

constexpr const char* kInfo = "/opt/vornix/share/program/Info.plist";
constexpr const char* kTexts = "/opt/vornix/share/program/en.lproj/Localizable.strings";

class DirectoryLocations : public testing::Test {
 protected:
  DirectoryLocations() { machine_.tree.addFolder("/tmp"); }

  std::optional<std::string> find(std::optional<std::string_view> component,
                                  std::optional<NSError>* error,
                                  NSSearchPathDirectory kind = NSCachesDirectory,
                                  NSSearchPathDomainMask domain = NSUserDomainMask) {
    return findOrCreateDirectory(machine_.files, kind, domain, component, error);
  }

  [[nodiscard]] bool isFolder(std::string_view path) const {
    bool isDirectory = false;
    return machine_.files.fileExistsAtPath(path, &isDirectory) && isDirectory;
  }

  fakes::FakeFileMachine machine_;
  fakes::ScopedSharedLogger logger_;
  std::optional<NSError> error_ = NSError{.domain = "from before"};
};

TEST_F(DirectoryLocations, ReturnsAnExistingFolderAndClearsTheError) {
  machine_.tree.addFile("/home/ada/.cache/program/kept");
  EXPECT_EQ(find("program", &error_), "/home/ada/.cache/program");
  EXPECT_EQ(error_, std::nullopt);
  EXPECT_TRUE(machine_.files.fileExistsAtPath("/home/ada/.cache/program/kept"));
  error_ = NSError{.domain = "from before"};
  EXPECT_EQ(find(std::nullopt, &error_), "/home/ada/.cache");
  EXPECT_EQ(error_, std::nullopt);
  EXPECT_EQ(find("program", nullptr), "/home/ada/.cache/program");
}

TEST_F(DirectoryLocations, MakesAMissingFolderWithAllAboveItAndClearsTheError) {
  EXPECT_EQ(find("a/b", &error_), "/home/ada/.cache/a/b");
  EXPECT_EQ(error_, std::nullopt);
  EXPECT_TRUE(isFolder("/home/ada/.cache/a/b"));
}

TEST_F(DirectoryLocations, AppendsAnyComponentToTheFirstResult) {
  struct Row {
    std::string_view component;
    std::string_view path;
  };
  constexpr Row rows[] = {{"", ""},
                          {"/", ""},
                          {"x", "/x"},
                          {"/x/", "/x"},
                          {"x//y", "/x/y"},
                          {"a b", "/a b"},
                          {"50%", "/50%"},
                          {"%41", "/%41"},
                          {"line\nbreak", "/line\nbreak"},
                          {".hidden", "/.hidden"},
                          {"\xFF\xFE", "/\xFF\xFE"},
                          {"\xED\xA0\x80", "/\xED\xA0\x80"},
                          {"cafe\u0301", "/cafe\u0301"},
                          {"caf\u00e9", "/caf\u00e9"},
                          {"\ud55c\uae00", "/\ud55c\uae00"},
                          {"\u05d0\u05d1", "/\u05d0\u05d1"},
                          {"\u200b", "/\u200b"},
                          {"\ufeffx", "/\ufeffx"},
                          {"\u0130\u00df\u03c2", "/\u0130\u00df\u03c2"},
                          {"\U0001F4BE", "/\U0001F4BE"},
                          {"~", "/~"}};
  for (const Row& row : rows) {
    const std::string expected = "/home/ada/.cache" + std::string(row.path);
    EXPECT_EQ(find(row.component, &error_), expected);
    EXPECT_EQ(error_, std::nullopt);
    EXPECT_TRUE(isFolder(expected)) << expected;
  }
}

TEST_F(DirectoryLocations, TakesTheFirstOfSeveralResults) {
  EXPECT_EQ(find("x", &error_, NSCachesDirectory, 3), "/home/ada/.cache/x");
  EXPECT_FALSE(isFolder("/var/cache/x"));
}

TEST_F(DirectoryLocations, GivesErrorCode1WithBothNumbersWhereAFileStandsInTheWay) {
  machine_.tree.addFile("/home/ada/.cache/program");
  EXPECT_EQ(find("program", &error_), std::nullopt);
  ASSERT_TRUE(error_.has_value());
  EXPECT_EQ(error_->domain, "DirectoryLocationDomain");
  EXPECT_EQ(error_->code, 1);
  EXPECT_EQ(error_->localizedDescription, "File exists at requested directory location.");
  EXPECT_EQ(error_->userInfo,
            (Dictionary{{"NSSearchPathDirectory", 13}, {"NSSearchPathDomainMask", 1}}));
  EXPECT_EQ(find("program", nullptr), std::nullopt);
}

TEST_F(DirectoryLocations, LooksUpThatErrorsTextInTheMainBundlesStrings) {
  fakes::resourceFiles().setFile(
      kTexts,
      "\"File exists at requested directory location.\" = \"Da steht was.\";\n"
      "\"No path found for directory in domain.\" = \"Nirgends.\";\n");
  machine_.tree.addFile("/home/ada/.cache/program");
  EXPECT_EQ(find("program", &error_), std::nullopt);
  ASSERT_TRUE(error_.has_value());
  EXPECT_EQ(error_->localizedDescription, "Da steht was.");
  EXPECT_EQ(find("program", &error_, NSDownloadsDirectory, NSLocalDomainMask), std::nullopt);
  EXPECT_EQ(error_->localizedDescription, "No path found for directory in domain.");
}

TEST_F(DirectoryLocations, GivesErrorCode0WhereTheDomainHasNoSuchFolder) {
  struct Row {
    NSSearchPathDirectory kind;
    NSSearchPathDomainMask domain;
  };
  constexpr Row rows[] = {{NSDownloadsDirectory, NSLocalDomainMask},
                          {NSCachesDirectory, 0},
                          {NSCachesDirectory, 4},
                          {NSLibraryDirectory, 8},
                          {0, 1},
                          {1, 65535},
                          {0xFFFFFFFF, 0xFFFFFFFF}};
  for (const Row& row : rows) {
    error_ = NSError{.domain = "from before"};
    EXPECT_EQ(find("x", &error_, row.kind, row.domain), std::nullopt);
    ASSERT_TRUE(error_.has_value());
    EXPECT_EQ(error_->domain, "DirectoryLocationDomain");
    EXPECT_EQ(error_->code, 0);
    EXPECT_EQ(error_->localizedDescription, "No path found for directory in domain.");
    EXPECT_EQ(error_->userInfo, (Dictionary{{"NSSearchPathDirectory", row.kind},
                                            {"NSSearchPathDomainMask", row.domain}}));
  }
}

TEST_F(DirectoryLocations, PassesTheCreationErrorOnUnchanged) {
  const auto fail = [this](std::string_view component) {
    const std::string path = "/home/ada/.cache/" + std::string(component);
    std::optional<NSError> expected;
    EXPECT_FALSE(machine_.files.createDirectoryAtPath(path, true, &expected));
    EXPECT_EQ(find(component, &error_), std::nullopt);
    EXPECT_EQ(error_, expected);
    return error_ ? error_->code : 0;
  };
  machine_.tree.addFile("/home/ada/.cache/file");
  machine_.tree.addLink("/home/ada/.cache/dangling", "missing");
  machine_.tree.addFolder("/home/ada/.cache/full");
  machine_.tree.addFolder("/home/ada/.cache/locked");
  machine_.tree.refuseChangesIn("/home/ada/.cache/full", ENOSPC);
  machine_.tree.refuseChangesIn("/home/ada/.cache/locked", EACCES);
  EXPECT_EQ(fail("file/x"), NSFileWriteUnknownError);
  EXPECT_EQ(fail("dangling"), NSFileWriteFileExistsError);
  EXPECT_EQ(fail("full/x"), NSFileWriteOutOfSpaceError);
  EXPECT_EQ(fail("locked/x"), NSFileWriteNoPermissionError);
  EXPECT_EQ(fail(std::string(256, 'x')), NSFileWriteInvalidFileNameError);
  EXPECT_EQ(fail("x\0y"sv), NSFileNoSuchFileError);
}

TEST_F(DirectoryLocations, MakesTheApplicationSupportFolderOfAName) {
  EXPECT_EQ(userApplicationSupportDirectoryWithAppName(machine_.files, "Other"),
            "/home/ada/.local/share/Other");
  EXPECT_TRUE(isFolder("/home/ada/.local/share/Other"));
  EXPECT_EQ(userApplicationSupportDirectoryWithAppName(machine_.files, std::nullopt),
            "/home/ada/.local/share");
  EXPECT_THAT(logger_.messages(), IsEmpty());
}

TEST_F(DirectoryLocations, LogsWhyThereIsNoApplicationSupportFolder) {
  machine_.tree.addFile("/home/ada/.local/share/Other");
  EXPECT_EQ(userApplicationSupportDirectoryWithAppName(machine_.files, "Other"), std::nullopt);
  EXPECT_THAT(logger_.messages(LogLevelDebug),
              ElementsAre(StartsWith("Unable to find or create application support directory:\n"
                                     "Error Domain=DirectoryLocationDomain Code=1 ")));
}

TEST_F(DirectoryLocations, NamesTheProgramsOwnFolderAfterItsExecutable) {
  fakes::resourceFiles().setPropertyList(kInfo, Dictionary{{"CFBundleExecutable", "the-program"}});
  EXPECT_EQ(userApplicationSupportDirectory(machine_.files), "/home/ada/.local/share/the-program");
  EXPECT_TRUE(isFolder("/home/ada/.local/share/the-program"));
}

TEST_F(DirectoryLocations, NamesNoFolderAfterAnExecutableThatIsNoText) {
  fakes::resourceFiles().setPropertyList(kInfo, Dictionary{{"CFBundleExecutable", 7}});
  EXPECT_EQ(userApplicationSupportDirectory(machine_.files), "/home/ada/.local/share");
}

TEST_F(DirectoryLocations, EmptiesAFolderThatHeldFilesUnderTheSameName) {
  machine_.tree.addFile("/tmp/scratch/old/file");
  EXPECT_EQ(temporaryDirectoryWithName(machine_.files, "scratch"), "/tmp/scratch");
  EXPECT_TRUE(isFolder("/tmp/scratch"));
  EXPECT_FALSE(machine_.files.fileExistsAtPath("/tmp/scratch/old"));
  EXPECT_THAT(logger_.messages(), IsEmpty());
}

TEST_F(DirectoryLocations, ReplacesWhateverStandsThereByAFolder) {
  machine_.tree.addFile("/kept/file");
  machine_.tree.addFile("/tmp/file");
  machine_.tree.addLink("/tmp/link", "../kept");
  machine_.tree.addLink("/tmp/dangling", "missing");
  for (const std::string name :
       {"file",         "link", "dangling",    "new",    "deep/er",    "a b",    "\xFF",
        "\xED\xA0\x80", "50%",  "line\nbreak", "\u200b", "cafe\u0301", "\ud55c", "\u05d0",
        "\U0001F4BE",   ".x",   "...",         "..x",    "~",          "x/./y",  "with-slash/"}) {
    const auto path = temporaryDirectoryWithName(machine_.files, name);
    ASSERT_TRUE(path.has_value()) << name;
    const auto status = machine_.files.attributesOfItemAtPath(*path);
    ASSERT_TRUE(status.has_value()) << name;
    EXPECT_EQ(status->type, FileType::directory) << name;
    EXPECT_EQ(status->permissions, 0700U) << name;
  }
  EXPECT_TRUE(machine_.files.fileExistsAtPath("/kept/file"));
}

TEST_F(DirectoryLocations, RemovesNothingForANameThatLeadsOutOfTheTemporaryFolder) {
  machine_.tree.addFile("/tmp/kept");
  machine_.tree.addFile("/home/ada/kept");
  for (const std::string_view name : {"", "/", ".", "./.", "..", "../home", "x/../..", "a/.."}) {
    logger_.capture().clear();
    EXPECT_EQ(temporaryDirectoryWithName(machine_.files, name), std::nullopt) << name;
    EXPECT_THAT(logger_.messages(LogLevelDebug),
                ElementsAre(StartsWith("Failed to remove directory /tmp")));
  }
  EXPECT_TRUE(machine_.files.fileExistsAtPath("/tmp/kept"));
  EXPECT_TRUE(machine_.files.fileExistsAtPath("/home/ada/kept"));
}

TEST_F(DirectoryLocations, LogsThatAScratchFolderCannotBeEmptied) {
  machine_.tree.addFile("/tmp/locked/file");
  machine_.tree.refuseChangesIn("/tmp/locked", EACCES);
  EXPECT_EQ(temporaryDirectoryWithName(machine_.files, "locked"), std::nullopt);
  EXPECT_THAT(logger_.messages(LogLevelDebug),
              ElementsAre("Failed to remove directory /tmp/locked"));
}

TEST_F(DirectoryLocations, LogsThatAScratchFolderCannotBeMade) {
  machine_.tree.refuseChangesIn("/tmp", EACCES);
  EXPECT_EQ(temporaryDirectoryWithName(machine_.files, "x"), std::nullopt);
  EXPECT_EQ(temporaryDirectoryWithName(machine_.files, "y\0z"sv), std::nullopt);
  EXPECT_THAT(
      logger_.messages(LogLevelDebug),
      ElementsAre("Failed to create directory /tmp/x", "Failed to create directory /tmp/y\0z"sv));
}

// Makes folders that belong to somebody else, as if that one had been faster.
class OvertakenFileSystem final : public fakes::FakeFileSystem {
 public:
  explicit OvertakenFileSystem(fakes::FakeFileTree& tree) : FakeFileSystem(tree), tree_(tree) {}

  [[nodiscard]] int makeFolder(std::string_view path, std::uint32_t /*permissions*/) override {
    const int error = FakeFileSystem::makeFolder(path, 0700);
    tree_.disown(std::string(path));
    return error == 0 ? EEXIST : error;
  }

 private:
  fakes::FakeFileTree& tree_;
};

TEST_F(DirectoryLocations, TakesNoScratchFolderThatSomebodyElseMadeMeanwhile) {
  OvertakenFileSystem fileSystem(machine_.tree);
  NSFileManager files(fileSystem, machine_.directories, machine_.trash);
  EXPECT_EQ(temporaryDirectoryWithName(files, "x"), std::nullopt);
  EXPECT_THAT(logger_.messages(LogLevelDebug), ElementsAre("Failed to create directory /tmp/x"));
}

}  // namespace
}  // namespace vornix
