#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>
#include <string_view>

#include "fs/NSFileManager+FileModificationsAdditions.h"
#include "platform/linux/system/FileDescriptor.h"
#include "tests/contract/support/PeakMemory.h"
#include "tests/support/ScratchFolder.h"

// A folder of a million items takes time, not memory.
namespace vornix {
namespace {

constexpr int kItems = 1'000'000;
constexpr long kMostKilobytes = 64L << 10;

NSFileManager& files() {
  return NSFileManager::defaultManager();
}

// Answers the folder. A disk makes names faster than files, so there some share one.
std::string makeItemsIn(const std::string& parent, int namesOfAFile) {
  std::string path = parent + "/many";
  EXPECT_EQ(mkdir(path.c_str(), 0700), 0);
  const FileDescriptor folder(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  std::string file;
  int made = 0;
  for (int number = 0; number < kItems; ++number) {
    const std::string name = "com.vendor.product-" + std::to_string(number);
    if (number % namesOfAFile == 0) {
      file = name;
      made += mknodat(folder.get(), name.c_str(), S_IFREG | 0600, 0) == 0;
    } else {
      made += linkat(folder.get(), file.c_str(), folder.get(), name.c_str(), 0) == 0;
    }
  }
  EXPECT_EQ(made, kItems);
  return path;
}

void expectWalked(const std::string& folder) {
  int items = 0;
  const auto count = [&items](std::string_view, bool, bool&) { ++items; };
  EXPECT_TRUE(com_orvane_FTSWalkAtPath(files(), folder, true, count));
  EXPECT_EQ(items, kItems);
  EXPECT_EQ(findFile(files(), "product-77777", folder, false, true).size(), 11U);
}

TEST(MillionItems, AreWalkedThroughSearchedAndRemovedFromADiskInLittleMemory) {
  const tests::ScratchFolder scratch("/var/tmp");
  const std::string folder = makeItemsIn(scratch.path(), 50'000);
  const contract::PeakMemory memory;
  expectWalked(folder);
  EXPECT_TRUE(removeFileAtPath(files(), folder));
  EXPECT_FALSE(files().fileExistsAtPath(folder));
  EXPECT_LT(memory.growthInKilobytes(), kMostKilobytes);
}

TEST(MillionItems, AreWalkedThroughSearchedAndRemovedSecurelyFromMemoryInLittleMemory) {
  const tests::ScratchFolder scratch("/dev/shm");
  const std::string folder = makeItemsIn(scratch.path(), 1);
  const contract::PeakMemory memory;
  expectWalked(folder);
  EXPECT_TRUE(securelyRemoveFileAtPath(files(), folder));
  EXPECT_FALSE(files().fileExistsAtPath(folder));
  EXPECT_LT(memory.growthInKilobytes(), kMostKilobytes);
}

}  // namespace
}  // namespace vornix
