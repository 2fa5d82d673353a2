#pragma once

#include <sys/types.h>

#include <optional>
#include <string>

namespace vornix {

struct Account {
  std::string name;
  std::string home;
};

// What the system's user database says. None when there is no such account.
[[nodiscard]] std::optional<Account> accountOfUser(uid_t user);
[[nodiscard]] std::optional<Account> accountNamed(const std::string& name);

}  // namespace vornix
