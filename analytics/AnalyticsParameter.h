#pragma once

#include <string_view>

// Names of the parameters of a hit, for those who report.
namespace vornix::AnalyticsParameter {

inline constexpr std::string_view ec = "ec";    // event category
inline constexpr std::string_view ea = "ea";    // event action
inline constexpr std::string_view el = "el";    // event label
inline constexpr std::string_view ev = "ev";    // event value; a negative one suppresses the hit
inline constexpr std::string_view cd = "cd";    // screen name
inline constexpr std::string_view uid = "uid";  // user id
inline constexpr std::string_view utc = "utc";  // timing: category
inline constexpr std::string_view utv = "utv";  // timing: variable
inline constexpr std::string_view utt = "utt";  // timing: time
inline constexpr std::string_view utl = "utl";  // timing: label
inline constexpr std::string_view ni = "ni";    // non-interaction
inline constexpr std::string_view cd1 = "cd1";  // custom dimensions
inline constexpr std::string_view cd2 = "cd2";
inline constexpr std::string_view cd3 = "cd3";
inline constexpr std::string_view cd4 = "cd4";
inline constexpr std::string_view cd5 = "cd5";

}  // namespace vornix::AnalyticsParameter
