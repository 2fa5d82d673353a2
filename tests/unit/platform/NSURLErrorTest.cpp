#include "platform/system/NSURLError.h"

#include <gtest/gtest.h>

namespace vornix {
namespace {

TEST(UrlText, TakesWhatMayStandInAUrl) {
  for (const char* url :
       {"https://collect.example/collect?v=1&ul=en", "https://[::1]:8443/a%20b?c=%C3%a4#d", "a"}) {
    EXPECT_TRUE(isUrlText(url)) << url;
  }
}

TEST(UrlText, RefusesWhatMayNotStandInAUrl) {
  for (const char* url : {"", "https://a/b c", "https://a/\xc3\xa4", "https://a/\"", "https://a/<",
                          "https://a/>", "https://a/#b#c", "https://a/%", "https://a/%4",
                          "https://a/%4g", "https://a/b\n", "https://a/{b}", "https://a/\\",
                          "https://a/^", "https://a/`", "https://a/|", "https://a/\x7f"}) {
    EXPECT_FALSE(isUrlText(url)) << url;
  }
}

TEST(UrlText, RefusesAnEmbeddedZero) {
  EXPECT_FALSE(isUrlText(std::string_view("https://a/\0b", 12)));
}

TEST(UrlError, CarriesDomainCodeAndDescription) {
  const NSError error = urlError(NSURLErrorTimedOut, "too late");
  EXPECT_EQ(error.domain, "NSURLErrorDomain");
  EXPECT_EQ(error.code, -1001);
  EXPECT_EQ(error.localizedDescription, "too late");
}

}  // namespace
}  // namespace vornix
