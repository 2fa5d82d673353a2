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

class MillionItems : public testing::TestWithParam<const char*> {
 protected:
  void SetUp() override {
    ASSERT_EQ(mkdir(folder_.c_str(), 0700), 0);
    const FileDescriptor folder(open(folder_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    for (int number = 0; number < kItems; ++number) {
      const std::string name = "com.vendor.product-" + std::to_string(number);
      ASSERT_EQ(mknodat(folder.get(), name.c_str(), S_IFREG | 0600, 0), 0) << number;
    }
  }

  const tests::ScratchFolder scratch_{GetParam()};
  const std::string folder_ = scratch_.path() + "/many";
  NSFileManager& files_ = NSFileManager::defaultManager();
};

INSTANTIATE_TEST_SUITE_P(, MillionItems, testing::Values("/var/tmp", "/dev/shm"),
                         [](const auto& row) {
                           return std::string_view(row.param) == "/dev/shm" ? "InMemory" : "OnDisk";
                         });

TEST_P(MillionItems, AreWalkedThroughSearchedAndRemovedInLittleMemory) {
  const contract::PeakMemory memory;
  int items = 0;
  EXPECT_TRUE(com_orvane_FTSWalkAtPath(
      files_, folder_, true, [&items](std::string_view, bool, bool&) { ++items; }));
  EXPECT_EQ(items, kItems);
  EXPECT_EQ(findFile(files_, "product-77777", folder_, false, true).size(), 11U);
  EXPECT_TRUE(removeFileAtPath(files_, folder_));
  EXPECT_FALSE(files_.fileExistsAtPath(folder_));
  EXPECT_LT(memory.growthInKilobytes(), kMostKilobytes);
}

TEST_P(MillionItems, AreRemovedSecurelyInLittleMemory) {
  const contract::PeakMemory memory;
  EXPECT_TRUE(securelyRemoveFileAtPath(files_, folder_));
  EXPECT_FALSE(files_.fileExistsAtPath(folder_));
  EXPECT_LT(memory.growthInKilobytes(), kMostKilobytes);
}

}  // namespace
}  // namespace vornix
