#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace vornix::desktop {

// The groups and keys of a desktop entry. Takes any bytes: lines that say nothing are passed over.
class KeyFile {
 public:
  [[nodiscard]] static KeyFile parse(std::string_view contents);

  [[nodiscard]] bool hasGroup(std::string_view group) const;
  // The value with its escapes undone; none when there is no such key.
  [[nodiscard]] std::optional<std::string> string(std::string_view group,
                                                  std::string_view key) const;
  // The same in the language of `locale` ("de_AT.UTF-8@euro"), else without a language.
  [[nodiscard]] std::optional<std::string> localizedString(std::string_view group,
                                                           std::string_view key,
                                                           std::string_view locale) const;
  // True for "true" and "1" only.
  [[nodiscard]] bool boolean(std::string_view group, std::string_view key) const;

 private:
  using Group = std::map<std::string, std::string, std::less<>>;
  std::map<std::string, Group, std::less<>> groups_;
};

}  // namespace vornix::desktop
