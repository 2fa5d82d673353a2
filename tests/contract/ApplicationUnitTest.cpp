#include "platform/linux/desktop/applications/ApplicationUnit.h"

#include <gtest/gtest.h>

namespace vornix::desktop {
namespace {

using Names = std::vector<std::string>;

TEST(ApplicationUnit, NamesTheApplicationOfAUnit) {
  const std::pair<const char*, Names> cases[] = {
      {"app-org.example.App-1234.scope", {"org.example.App"}},
      {"app-gnome-org.example.App-1234.scope", {"org.example.App"}},
      {"app-gnome-my\\x2dapp-1.scope", {"my-app"}},
      {"app-org.example.App@f00.service", {"org.example.App"}},
      {"app-gnome-org.example.App@f00.service", {"org.example.App"}},
      {"app-org.example.App.service", {"org.example.App"}},
      {"app-gnome-org.example.App-f00.service", {"org.example.App"}},
      {"app-org.example.App-f00.service", {"org.example.App", "f00"}},
      {"app-a\\x2Db\\xe4-1.scope", {"a-b\xE4"}},
      {"app-a\\x-1.scope", {"a\\x"}},
      {"app-a\\x00-1.scope", {"a\\x00"}},
  };
  for (const auto& [unit, names] : cases) EXPECT_EQ(identifiersOfUnit(unit), names) << unit;
}

TEST(ApplicationUnit, KnowsNoApplicationOfOtherUnits) {
  for (const auto* unit :
       {"", "app-", "app-.scope", "app-1.scope", "app-a--1.scope", "app-a-b-c-d.scope",
        "app-a-1.slice", "session-1.scope", "xapp-a-1.scope", "app.slice", ".service", "app-a-1"})
    EXPECT_EQ(identifiersOfUnit(unit), Names()) << unit;
}

TEST(ApplicationUnit, FindsTheInnermostUnitOfAControlGroup) {
  EXPECT_EQ(applicationUnitPath("/user.slice/app.slice/app-a-1.scope"),
            "/user.slice/app.slice/app-a-1.scope");
  EXPECT_EQ(applicationUnitPath("/app-a-1.scope/sub/app-b-2.scope/x/y"),
            "/app-a-1.scope/sub/app-b-2.scope");
  EXPECT_EQ(applicationUnitPath("app-a-1.scope"), "app-a-1.scope");
  for (const auto* group : {"", "/", "//", "/user.slice/session.scope", "x"})
    EXPECT_EQ(applicationUnitPath(group), std::nullopt) << group;
}

TEST(ApplicationUnit, MakesUnitNamesThatReadBack) {
  EXPECT_EQ(serviceUnitName("com.orvane.Vornix3", "f00"), "app-com.orvane.Vornix3-f00.service");
  EXPECT_EQ(serviceUnitName("my-app", "f00"), "app-my\\x2dapp-f00.service");
  for (const std::string identifier : {"a", "my-app", "caf\xC3\xA9 @\\/%", "\\x2d"})
    EXPECT_EQ(identifiersOfUnit(serviceUnitName(identifier, "f00")).front(), identifier);
}

}  // namespace
}  // namespace vornix::desktop
