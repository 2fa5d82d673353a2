#include "tests/fakes/FakePreferencesStore.h"

namespace vornix::fakes {

std::optional<Value> FakePreferencesStore::copyValue(std::string_view key, std::string_view domain,
                                                     PreferencesUser user) {
  const std::lock_guard lock(mutex_);
  const auto& domains = user == PreferencesUser::Current ? current_ : any_;
  const auto found = domains.find(domain);
  const Value* value = found == domains.end() ? nullptr : found->second.find(key);
  return value != nullptr ? std::optional(*value) : std::nullopt;
}

std::optional<NSError> FakePreferencesStore::setValue(std::string_view key,
                                                      const std::optional<Value>& value,
                                                      std::string_view domain) {
  const std::lock_guard lock(mutex_);
  ++writes_;
  Dictionary& keys = current_[std::string(domain)];
  if (value) {
    keys.set(key, *value);
  } else {
    keys.remove(key);
  }
  return failing_ ? std::optional(posixError(28, domain)) : std::nullopt;
}

bool FakePreferencesStore::synchronize(std::string_view domain) {
  const std::lock_guard lock(mutex_);
  synchronized_.emplace_back(domain);
  return !failing_;
}

bool FakePreferencesStore::synchronizeAll() {
  return synchronize("*");
}

void FakePreferencesStore::setAnyUserValue(std::string_view key, const Value& value,
                                           std::string_view domain) {
  const std::lock_guard lock(mutex_);
  any_[std::string(domain)].set(key, value);
}

void FakePreferencesStore::failWrites(bool fail) {
  const std::lock_guard lock(mutex_);
  failing_ = fail;
}

Dictionary FakePreferencesStore::contents(std::string_view domain) const {
  const std::lock_guard lock(mutex_);
  const auto found = current_.find(domain);
  return found == current_.end() ? Dictionary() : found->second;
}

std::vector<std::string> FakePreferencesStore::synchronized() const {
  const std::lock_guard lock(mutex_);
  return synchronized_;
}

int FakePreferencesStore::writes() const {
  const std::lock_guard lock(mutex_);
  return writes_;
}

}  // namespace vornix::fakes
