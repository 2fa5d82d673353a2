#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vornix::desktop {

// Names of service manager units that stand for one started application:
// "app[-LAUNCHER]-IDENTIFIER-RANDOM.scope", the same with ".service", and
// "app[-LAUNCHER]-IDENTIFIER@RANDOM.service".

// The identifiers that the unit may stand for, most likely first; none for any other unit.
[[nodiscard]] std::vector<std::string> identifiersOfUnit(std::string_view unit);

// The innermost application unit on the way of a control group path ("/user.slice/..."), as a path
// up to that unit; none when there is none.
[[nodiscard]] std::optional<std::string> applicationUnitPath(std::string_view controlGroup);

// A fresh service unit's name for the application. `random`: letters and digits.
[[nodiscard]] std::string serviceUnitName(std::string_view identifier, std::string_view random);

}  // namespace vornix::desktop
