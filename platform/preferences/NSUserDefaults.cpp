#include "platform/preferences/NSUserDefaults.h"

#include <algorithm>
#include <utility>

#include "platform/base/Diagnostics.h"
#include "platform/base/Text.h"
#include "platform/preferences/PreferencesSearch.h"
#include "platform/system/TextPropertyList.h"

namespace vornix {
namespace {

bool isArgumentKey(std::string_view argument) {
  return argument.size() > 1 && argument.front() == '-';
}

// "-1" is a value, "-Key" the next key.
bool isArgumentValue(std::string_view argument) {
  return !isArgumentKey(argument) || text::isAsciiDigit(argument[1]);
}

std::optional<Value> found(const Dictionary& values, std::string_view key) {
  const Value* value = values.find(key);
  return value != nullptr ? std::optional(*value) : std::nullopt;
}

}  // namespace

NSUserDefaults::NSUserDefaults(std::string domain, PreferencesStore& store,
                               NSNotificationCenter& center)
    : domain_(std::move(domain)),
      store_(store),
      center_(center),
      searchedDomains_(std::make_shared<std::vector<std::string>>(1, domain_)) {}

std::optional<Value> NSUserDefaults::objectForKey(std::string_view key) const {
  std::shared_ptr<const std::vector<std::string>> domains;
  {
    const Lock lock(mutex_);
    if (auto value = found(arguments_, key)) return value;
    if (auto value = found(unsaved_, key)) return value;
    domains = searchedDomains_;
  }
  if (auto value = searchPreferences(store_, key, *domains)) return value;
  const Lock lock(mutex_);
  return found(registered_, key);
}

bool NSUserDefaults::boolForKey(std::string_view key) const {
  const auto value = objectForKey(key);
  return value && value->boolValue();
}

std::int64_t NSUserDefaults::integerForKey(std::string_view key) const {
  const auto value = objectForKey(key);
  return value ? value->integerValue() : 0;
}

std::optional<std::string> NSUserDefaults::stringForKey(std::string_view key) const {
  const auto value = objectForKey(key);
  const auto* text = value ? value->as<std::string>() : nullptr;
  return text != nullptr ? std::optional(*text) : std::nullopt;
}

void NSUserDefaults::setObject(const std::optional<Value>& value, std::string_view key) {
  if (value && containsNull(*value)) {
    reportDiagnostic("The preference \"" + std::string(key) + "\" cannot hold a null object");
    return;
  }
  setOwn(key, value);
  center_.postNotification(
      {std::string(NSUserDefaultsDidChangeNotification), weak_from_this().lock(), {}});
}

void NSUserDefaults::removeObjectForKey(std::string_view key) {
  setObject(std::nullopt, key);
}

void NSUserDefaults::setOwn(std::string_view key, const std::optional<Value>& value) {
  if (!domain_.empty()) {
    if (const auto error = store_.setValue(key, value, domain_)) {
      reportDiagnostic(error->localizedDescription);
    }
    return;
  }
  const Lock lock(mutex_);
  if (value) {
    unsaved_.set(key, *value);
  } else {
    unsaved_.remove(key);
  }
}

std::optional<Value> NSUserDefaults::ownObjectForKey(std::string_view key) const {
  if (!domain_.empty()) return store_.copyValue(key, domain_, PreferencesUser::Current);
  const Lock lock(mutex_);
  return found(unsaved_, key);
}

void NSUserDefaults::registerDefaults(const Dictionary& defaults) {
  const Lock lock(mutex_);
  for (const auto& [key, value] : defaults) registered_.set(key, value);
}

void NSUserDefaults::addSuiteNamed(std::string_view suite) {
  if (suite.empty() || suite == domain_) return;
  const Lock lock(mutex_);
  auto domains = std::make_shared<std::vector<std::string>>(*searchedDomains_);
  std::erase(*domains, suite);
  domains->emplace(domains->begin() + 1, suite);
  searchedDomains_ = std::move(domains);
}

void NSUserDefaults::setArguments(const std::vector<std::string>& arguments) {
  Dictionary parsed;
  for (std::size_t index = 0; index + 1 < arguments.size(); ++index) {
    const std::string& key = arguments[index];
    const std::string& text = arguments[index + 1];
    if (!isArgumentKey(key) || !isArgumentValue(text)) continue;
    auto value = parseTextPropertyList(text);
    parsed.set(key.substr(1), value ? std::move(*value) : Value(text));
    ++index;
  }
  const Lock lock(mutex_);
  arguments_ = std::move(parsed);
}

bool NSUserDefaults::synchronize() {
  return domain_.empty() || store_.synchronize(domain_);
}

}  // namespace vornix
