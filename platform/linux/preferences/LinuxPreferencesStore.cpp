#include "platform/linux/preferences/LinuxPreferencesStore.h"

#include <cerrno>
#include <utility>
#include <vector>

#include "platform/linux/preferences/HomeSkeleton.h"
#include "platform/system/NSProcessInfo.h"

namespace vornix {
namespace {

// A file name, with room for the suffixes of its companions.
bool isFileName(std::string_view domain) {
  constexpr std::size_t kLongest = 220;
  return !domain.empty() && domain.size() <= kLongest &&
         domain.find('/') == std::string_view::npos && domain.find('\0') == std::string_view::npos;
}

std::string pathOf(const std::string& folder, std::string_view domain) {
  constexpr std::string_view kSuffix = ".plist";
  std::string path;
  path.reserve(folder.size() + 1 + domain.size() + kSuffix.size());
  path.append(folder).append("/").append(domain).append(kSuffix);
  return path;
}

}  // namespace

LinuxPreferencesStore::LinuxPreferencesStore(std::string home, std::string anyUserFolder,
                                             const PreferencesLimits& limits)
    : home_(std::move(home)),
      currentUserFolder_(home_ + "/Library/Preferences"),
      anyUserFolder_(std::move(anyUserFolder)),
      limits_(limits) {}

PreferencesFile* LinuxPreferencesStore::file(std::string_view domain, PreferencesUser user) {
  if (!isFileName(domain) || (user == PreferencesUser::Current && home_.empty())) return nullptr;
  const Lock lock(mutex_);
  Files& files = user == PreferencesUser::Current ? currentUser_ : anyUser_;
  const auto known = files.find(domain);
  if (known != files.end()) return &known->second;
  const std::string& folder =
      user == PreferencesUser::Current ? currentUserFolder_ : anyUserFolder_;
  return &files.try_emplace(std::string(domain), pathOf(folder, domain), limits_).first->second;
}

std::optional<Value> LinuxPreferencesStore::copyValue(std::string_view key, std::string_view domain,
                                                      PreferencesUser user) {
  PreferencesFile* const preferences = file(domain, user);
  return preferences != nullptr ? preferences->value(key) : std::nullopt;
}

std::optional<NSError> LinuxPreferencesStore::setValue(std::string_view key,
                                                       const std::optional<Value>& value,
                                                       std::string_view domain) {
  PreferencesFile* const preferences = file(domain, PreferencesUser::Current);
  if (preferences == nullptr) {
    return posixError(EINVAL, "The preferences domain \"" + std::string(domain) + "\"");
  }
  makeHomeSkeleton(home_);
  return preferences->setValue(key, value);
}

bool LinuxPreferencesStore::synchronize(std::string_view domain) {
  PreferencesFile* const preferences = file(domain, PreferencesUser::Current);
  return preferences != nullptr && preferences->synchronize();
}

bool LinuxPreferencesStore::synchronizeAll() {
  std::vector<PreferencesFile*> files;
  {
    const Lock lock(mutex_);
    files.reserve(currentUser_.size());
    for (auto& [domain, preferences] : currentUser_) files.push_back(&preferences);
  }
  bool all = true;
  for (PreferencesFile* preferences : files) all = preferences->synchronize() && all;
  return all;
}

PreferencesStore& sharedPreferencesStore() {
  static auto& store = *new LinuxPreferencesStore(NSProcessInfo::processInfo().homeDirectory());
  return store;
}

}  // namespace vornix
