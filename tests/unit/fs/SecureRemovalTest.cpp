#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "tests/fakes/FakeFileRemover.h"
#include "tests/fakes/FakeResourceFiles.h"
#include "tests/unit/fs/FileModificationsFixture.h"

namespace vornix {
namespace {

class SecureRemoval : public FileModifications {
 protected:
  SecureRemoval() {
    machine_.tree.addFile("/folder/inner/file");
    machine_.tree.addFile("/file");
    for (const auto& [language, text] :
         {std::pair("en", "It stays."), std::pair("de", "Es bleibt.")}) {
      resources_.setFile("/bundle/" + std::string(language) + ".lproj/Errors.strings",
                         "\"ErrorDescRemoving_GenericError\" = \"" + std::string(text) + "\";");
    }
  }

  bool remove(std::string_view path, const char* language = "en") {
    return securelyRemoveFileAtPath(machine_.files, path, &error_, remover_,
                                    NSBundle("/bundle", {language}, std::nullopt, resources_));
  }

  fakes::FakeFileRemover remover_{machine_.tree};
  fakes::FakeResourceFiles resources_;
};

using Requests = std::vector<std::pair<std::string, std::uint32_t>>;

TEST_F(SecureRemoval, RemovesAFolderWithItsContentsAndLeavesTheErrorAlone) {
  EXPECT_TRUE(remove("/folder"));
  EXPECT_FALSE(exists("/folder"));
  EXPECT_EQ(code(), 0);
  EXPECT_EQ(remover_.requests(), (Requests{{"/folder", 0x11}}));
  EXPECT_EQ(logger_.messages(), std::vector<std::string>());
}

TEST_F(SecureRemoval, TellsAFailureInTheProgramsOwnWordsAndLogsNothing) {
  for (const auto& [language, text] :
       {std::pair("en", "It stays."), std::pair("de", "Es bleibt.")}) {
    for (const std::int32_t value : {-1, -2, 7}) {
      remover_.answer({value, 5});
      EXPECT_FALSE(remove("/file", language));
      const NSError expected{.domain = "com.orvane.Vornix.SecureRemoveErrorDomain",
                             .code = value,
                             .localizedDescription = text};
      EXPECT_EQ(error_, expected);
    }
  }
  EXPECT_EQ(logger_.messages(), std::vector<std::string>());
}

TEST_F(SecureRemoval, FailsWithCodeMinusOneForWhatDoesNotExist) {
  EXPECT_FALSE(remove("/missing"));
  EXPECT_EQ(code(), -1);
  EXPECT_EQ(error_->domain, "com.orvane.Vornix.SecureRemoveErrorDomain");
}

TEST_F(SecureRemoval, NeedsNoErrorVariable) {
  remover_.answer({-1, 5});
  EXPECT_FALSE(securelyRemoveFileAtPath(machine_.files, "/file", nullptr, remover_));
  remover_.answer({});
  EXPECT_TRUE(securelyRemoveFileAtPath(machine_.files, "/file", nullptr, remover_));
  EXPECT_FALSE(exists("/file"));
}

TEST_F(SecureRemoval, UnlocksTheItemButNotTheFolderAroundIt) {
  lock("/folder/inner/file");
  lock("/folder/inner");
  remover_.answer({-1, 1});
  EXPECT_FALSE(remove("/folder/inner/file"));
  EXPECT_FALSE(machine_.tree.itemAt("/folder/inner/file").isImmutable);
  EXPECT_TRUE(machine_.tree.itemAt("/folder/inner").isImmutable);
}

TEST_F(SecureRemoval, TriesToRemoveWhatItCouldNotUnlock) {
  lock("/file");
  machine_.tree.isRoot = false;
  remover_.answer({-1, 1});
  EXPECT_FALSE(remove("/file"));
  EXPECT_EQ(remover_.requests(), (Requests{{"/file", 0x11}}));
  EXPECT_EQ(code(), -1);
}

TEST_F(SecureRemoval, SaysTheTextsKeyWhereTheProgramHasNoTextForIt) {
  remover_.answer({-1, 5});
  const NSBundle none("/nothing", {"en"}, std::nullopt, resources_);
  EXPECT_FALSE(securelyRemoveFileAtPath(machine_.files, "/file", &error_, remover_, none));
  EXPECT_EQ(error_->localizedDescription, "ErrorDescRemoving_GenericError");
}

}  // namespace
}  // namespace vornix
