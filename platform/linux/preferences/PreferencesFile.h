#pragma once

#include <chrono>
#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/base/Mutex.h"
#include "platform/base/NSError.h"
#include "platform/base/Value.h"
#include "platform/linux/preferences/FileBytes.h"
#include "platform/linux/preferences/PropertyList.h"

namespace vornix {

// How long a write waits for other programs, and what counts as too large to read.
struct PreferencesLimits {
  std::chrono::milliseconds lockPatience{5000};
  std::size_t largestFile = kLargestPropertyListFile;
};

// One domain's property-list file. Any thread; also from inside the receiver of a diagnostic of it.
class PreferencesFile {
 public:
  PreferencesFile(std::string path, const PreferencesLimits& limits)
      : path_(std::move(path)), limits_(limits) {}

  // As it stands now. Makes nothing.
  [[nodiscard]] std::optional<Value> value(std::string_view key);
  // None removes. Every other key stays as it is. A failed change is kept and stored with the next
  // success; one that no property list can hold is refused.
  std::optional<NSError> setValue(std::string_view key, const std::optional<Value>& value);
  // Stores what is left, and makes what this object stored durable. False when either fails.
  bool synchronize();

 private:
  class Access;

  // Unreadable: nothing but setting it aside helps. Unavailable: trying again may help.
  enum class State { Unknown, Missing, Read, Unreadable, Unavailable };

  // Looks for changes of other programs; what was read stays when there are none.
  void refresh() VORNIX_REQUIRES(mutex_);
  void setRoot(PropertyListNode root, std::string bytes = {}) VORNIX_REQUIRES(mutex_);
  [[nodiscard]] std::optional<Value> valueOfRoot(const std::string& key) const
      VORNIX_REQUIRES(mutex_);
  void take(FileBytes file) VORNIX_REQUIRES(mutex_);
  void reportTrouble(int error) VORNIX_REQUIRES(mutex_);
  std::optional<NSError> storePending() VORNIX_REQUIRES(mutex_);
  std::optional<NSError> replace(const std::string& target) VORNIX_REQUIRES(mutex_);
  bool applyPending(void* root) VORNIX_REQUIRES(mutex_);
  [[nodiscard]] NSError failure(int error) const;

  const std::string path_;
  const PreferencesLimits limits_;
  Mutex mutex_;
  State state_ VORNIX_GUARDED_BY(mutex_) = State::Unknown;
  int error_ VORNIX_GUARDED_BY(mutex_) = 0;
  FileStamp stamp_ VORNIX_GUARDED_BY(mutex_);
  PropertyListNode root_ VORNIX_GUARDED_BY(mutex_);
  // What `root_` was read from; empty once it was changed.
  std::string bytes_ VORNIX_GUARDED_BY(mutex_);
  // What was asked of `root_` so far.
  std::map<std::string, std::optional<Value>, std::less<>> known_ VORNIX_GUARDED_BY(mutex_);
  std::map<std::string, std::optional<Value>, std::less<>> pending_ VORNIX_GUARDED_BY(mutex_);
  bool unflushed_ VORNIX_GUARDED_BY(mutex_) = false;
  // What is to be reported when the lock is let go.
  std::vector<std::string> lines_ VORNIX_GUARDED_BY(mutex_);
};

}  // namespace vornix
