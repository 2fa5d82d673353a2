#include "platform/linux/system/SharedLibrary.h"

#include <gtest/gtest.h>

namespace vornix {
namespace {

TEST(SharedLibrary, CallsAFunctionOfTheLoadedLibrary) {
  std::string why;
  const auto library = SharedLibrary::open("libm.so.6", &why);
  ASSERT_TRUE(library) << why;
  auto* cosine = library->load<double(double)>("cos");
  ASSERT_NE(cosine, nullptr);
  EXPECT_EQ(cosine(0.0), 1.0);
}

TEST(SharedLibrary, SaysWhichLibraryIsMissing) {
  std::string why;
  EXPECT_FALSE(SharedLibrary::open("libvornix-none.so.1", &why));
  EXPECT_NE(why.find("libvornix-none.so.1"), std::string::npos) << why;
  EXPECT_FALSE(SharedLibrary::open("libvornix-none.so.1", nullptr));
}

TEST(SharedLibrary, SaysWhichFunctionIsMissing) {
  std::string why;
  const auto library = SharedLibrary::open("libm.so.6", &why);
  ASSERT_TRUE(library) << why;
  double (*function)(double) = nullptr;
  EXPECT_FALSE(library->bind(function, "vornix_none", &why));
  EXPECT_EQ(function, nullptr);
  EXPECT_EQ(why, "no function vornix_none");
}

}  // namespace
}  // namespace vornix
