#include "platform/linux/system/Account.h"

#include <pwd.h>

#include <cerrno>
#include <vector>

namespace vornix {
namespace {

std::string textOrEmpty(const char* text) {
  return text != nullptr ? text : "";
}

// `look` asks the database as `getpwuid_r` does.
template <typename Look>
std::optional<Account> accountFoundBy(const Look& look) {
  constexpr std::size_t kLargestRecord = 1U << 20U;
  for (std::size_t size = 1024; size <= kLargestRecord; size *= 4) {
    std::vector<char> buffer(size);
    passwd record{};
    passwd* found = nullptr;
    const int error = look(&record, buffer.data(), buffer.size(), &found);
    if (error == ERANGE) continue;
    if (error != 0 || found == nullptr) return std::nullopt;
    return Account{textOrEmpty(record.pw_name), textOrEmpty(record.pw_dir)};
  }
  return std::nullopt;
}

}  // namespace

std::optional<Account> accountOfUser(uid_t user) {
  return accountFoundBy([user](passwd* record, char* buffer, std::size_t size, passwd** found) {
    return ::getpwuid_r(user, record, buffer, size, found);
  });
}

std::optional<Account> accountNamed(const std::string& name) {
  return accountFoundBy([&name](passwd* record, char* buffer, std::size_t size, passwd** found) {
    return ::getpwnam_r(name.c_str(), record, buffer, size, found);
  });
}

}  // namespace vornix
