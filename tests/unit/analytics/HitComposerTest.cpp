#include "analytics/HitComposer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "analytics/AnalyticsParameter.h"

namespace vornix {
namespace {

using testing::HasSubstr;

AutomaticParameters automatic(std::optional<std::string> screen,
                              std::optional<std::string> session) {
  return {.contentDescription = [screen] { return screen; },
          .sessionIdentifier = [session] { return session; }};
}

HitOrigin origin() {
  return {.collectionHost = "collect.example",
          .gaid = "UA-1-1",
          .applicationVersion = "3.4",
          .clientIdentifier = "cafe"};
}

TEST(FilteringAHit, OverwritesTheTypeThatTheCallerGave) {
  EXPECT_EQ(filteredParameters({{"t", "item"}}, "event", {}), (Dictionary{{"t", "event"}}));
  EXPECT_EQ(filteredParameters({{"t", Null{}}}, "event", {}), (Dictionary{{"t", "event"}}));
}

TEST(FilteringAHit, AddsTheScreenAndTheSessionWhereTheCallerNamesNone) {
  EXPECT_EQ(filteredParameters({{"ec", "Scheduler"}}, "event", automatic("Main", "s1")),
            (Dictionary{{"ec", "Scheduler"}, {"t", "event"}, {"cd", "Main"}, {"uid", "s1"}}));
}

TEST(FilteringAHit, KeepsTheCallersOwnScreenAndUser) {
  const Dictionary parameters{{"cd", "Mine"}, {"uid", "me"}};
  EXPECT_EQ(filteredParameters(parameters, "event", automatic("Modal", "s1")),
            (Dictionary{{"cd", "Mine"}, {"uid", "me"}, {"t", "event"}}));
}

TEST(FilteringAHit, DropsNullParametersAndAddsNothingInTheirPlace) {
  const Dictionary parameters{{"cd", Null{}}, {"uid", Null{}}, {"el", Null{}}, {"ea", "a"}};
  EXPECT_EQ(filteredParameters(parameters, "event", automatic("Modal", "s1")),
            (Dictionary{{"ea", "a"}, {"t", "event"}}));
}

TEST(FilteringAHit, AddsNothingWhenThereIsNoScreenAndNoSession) {
  EXPECT_EQ(filteredParameters({}, "event", automatic(std::nullopt, std::nullopt)),
            (Dictionary{{"t", "event"}}));
}

TEST(FilteringAHit, AsksForTheSessionOnlyWhenTheCallerNamesNoUser) {
  int asked = 0;
  const AutomaticParameters counting{.contentDescription = {},
                                     .sessionIdentifier = [&asked]() -> std::optional<std::string> {
                                       ++asked;
                                       return "s1";
                                     }};
  (void)filteredParameters({{"uid", "me"}}, "event", counting);
  EXPECT_EQ(asked, 0);
  (void)filteredParameters({}, "event", counting);
  EXPECT_EQ(asked, 1);
}

TEST(ComposingAUrl, NamesHostIdentifierApplicationVersionAndClientUnescaped) {
  EXPECT_EQ(baseUrl(origin()),
            "https://collect.example/collect?v=1&tid=UA-1-1&an=Vornix&av=3.4&cid=cafe");
  auto odd = origin();
  odd.applicationVersion = "3.4 b&c";
  EXPECT_THAT(baseUrl(odd), HasSubstr("&av=3.4 b&c&cid="));
}

TEST(ComposingAUrl, AppendsParametersInTheirOrderAndTheSystemInformation) {
  const Dictionary parameters{
      {"t", "event"}, {"ec", "Scheduler"}, {"ea", "Notification Shown"}, {"ev", 0}, {"ni", true}};
  EXPECT_EQ(requestUrl(origin(), parameters, "&sr=1440x900&vp=0x0&ul=en"),
            baseUrl(origin()) +
                "&t=event&ec=Scheduler&ea=Notification%20Shown&ev=0&ni=1"
                "&sr=1440x900&vp=0x0&ul=en");
}

TEST(ComposingAUrl, EscapesAnAmpersandAndLeavesEqualsAndPlusSigns) {
  EXPECT_EQ(requestUrl(origin(), {{"el", "a&b=c+d"}}, ""), baseUrl(origin()) + "&el=a%26b=c+d");
}

TEST(ComposingAUrl, WritesNumbersAsTheirShortDecimals) {
  EXPECT_EQ(requestUrl(origin(), {{"tr", 39.95}, {"iq", 1}, {"ev", 1.0}}, ""),
            baseUrl(origin()) + "&tr=39.95&iq=1&ev=1");
}

TEST(ComposingAUrl, WritesNullInParenthesesForATextThatCannotBeEscaped) {
  EXPECT_EQ(requestUrl(origin(), {{"el", "a\xED\xA0\xBD"}}, ""), baseUrl(origin()) + "&el=(null)");
}

TEST(ComposingAUrl, NeverEscapesKeys) {
  EXPECT_EQ(requestUrl(origin(), {{"a b", "c d"}}, ""), baseUrl(origin()) + "&a b=c%20d");
}

TEST(ParameterNames, AreThoseOfTheProtocol) {
  namespace P = AnalyticsParameter;
  const std::vector<std::string_view> names{P::ec,  P::ea,  P::el,  P::ev,  P::cd, P::uid,
                                            P::utc, P::utv, P::utt, P::utl, P::ni, P::cd1,
                                            P::cd2, P::cd3, P::cd4, P::cd5};
  EXPECT_EQ(names,
            (std::vector<std::string_view>{"ec", "ea", "el", "ev", "cd", "uid", "utc", "utv", "utt",
                                           "utl", "ni", "cd1", "cd2", "cd3", "cd4", "cd5"}));
}

}  // namespace
}  // namespace vornix
