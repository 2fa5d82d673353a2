#include <gtest/gtest.h>

#include <exception>
#include <stdexcept>

namespace vornix {
namespace {

template <typename Exception>
void endWith(const Exception& exception) {
  try {
    throw exception;
  } catch (...) {
    __gnu_cxx::__verbose_terminate_handler();
  }
}

TEST(TerminateHandlerDeathTest, SaysTypeAndTextOfTheException) {
  EXPECT_DEATH(endWith(std::runtime_error("no more")), "runtime_error'\n  what\\(\\):  no more");
}

TEST(TerminateHandlerDeathTest, SaysTheTypeOfWhatIsNoException) {
  EXPECT_DEATH(endWith(7), "instance of 'i'");
}

TEST(TerminateHandlerDeathTest, SaysThatThereIsNoException) {
  EXPECT_DEATH(__gnu_cxx::__verbose_terminate_handler(), "without an active exception");
}

}  // namespace
}  // namespace vornix
