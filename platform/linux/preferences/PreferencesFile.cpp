#include "platform/linux/preferences/PreferencesFile.h"

#include <plist/plist.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <utility>

#include "platform/base/Diagnostics.h"
#include "platform/base/Mutex.h"
#include "platform/linux/preferences/BinaryPropertyList.h"
#include "platform/linux/preferences/FileReplacement.h"
#include "platform/linux/preferences/PreferencesLock.h"

namespace vornix {
namespace {

// A want that passes, unlike a file of the wrong kind, size or owner.
bool mayPass(int error) {
  return error != EISDIR && error != EFBIG && error != EACCES && error != EPERM;
}

}  // namespace

// Holds the lock. Who is told of trouble may read these very preferences (the log does), so the
// lock is let go first.
class VORNIX_SCOPED_LOCK PreferencesFile::Access {
 public:
  explicit Access(PreferencesFile& file) VORNIX_ACQUIRE(file.mutex_) : file_(file) {
    file.mutex_.lock();
  }
  Access(const Access&) = delete;
  Access& operator=(const Access&) = delete;
  ~Access() VORNIX_RELEASE() {
    const std::vector<std::string> lines = std::exchange(file_.lines_, {});
    file_.mutex_.unlock();
    for (const std::string& line : lines) reportDiagnostic(line);
  }

 private:
  PreferencesFile& file_;
};

std::optional<Value> PreferencesFile::value(std::string_view key) {
  const Access access(*this);
  if (const auto change = pending_.find(key); change != pending_.end()) return change->second;
  refresh();
  if (!root_) return std::nullopt;
  if (const auto found = known_.find(key); found != known_.end()) return found->second;
  std::string name(key);
  auto value = valueOfRoot(name);
  return known_.emplace(std::move(name), std::move(value)).first->second;
}

std::optional<Value> PreferencesFile::valueOfRoot(const std::string& key) const {
  plist_t node = plist_dict_get_item(root_.get(), key.c_str());
  if (node == nullptr) return std::nullopt;
  // Taking a date out of a node costs more than reading the file did.
  if (plist_get_node_type(node) == PLIST_DATE) {
    const auto list = BinaryPropertyList::open(bytes_);
    if (const auto date = list ? list->date(key) : std::nullopt) return Value(*date);
  }
  return valueOfNode(node);
}

std::optional<NSError> PreferencesFile::setValue(std::string_view key,
                                                 const std::optional<Value>& value) {
  if (!isPropertyListText(key) || (value && !nodeOfValue(*value))) {
    return posixError(EINVAL, path_ + ", value of \"" + std::string(key) + "\"");
  }
  const Access access(*this);
  pending_.insert_or_assign(std::string(key), value);
  return storePending();
}

bool PreferencesFile::synchronize() {
  const Access access(*this);
  if (const auto error = storePending()) {
    lines_.push_back(error->localizedDescription);
    return false;
  }
  if (!unflushed_) return true;
  const auto target = resolveFileLinks(path_);
  const int error = target ? flushFileAndFolder(*target) : errno;
  // Removed meanwhile by another program: nothing of ours is left to make durable.
  if (error != 0 && error != ENOENT) {
    lines_.push_back(failure(error).localizedDescription);
    return false;
  }
  unflushed_ = false;
  return true;
}

void PreferencesFile::refresh() {
  if (state_ == State::Read || state_ == State::Unreadable) {
    struct stat status {};
    if (stat(path_.c_str(), &status) == 0 && stamp_.names(status)) return;
  }
  take(readFileBytes(path_, limits_.largestFile));
}

void PreferencesFile::setRoot(PropertyListNode root, std::string bytes) {
  root_ = std::move(root);
  bytes_ = std::move(bytes);
  known_.clear();
}

void PreferencesFile::take(FileBytes file) {
  const int previousError = std::exchange(error_, file.error);
  const bool reported = state_ == State::Unreadable || state_ == State::Unavailable;
  stamp_ = file.stamp;
  setRoot(nullptr);
  if (file.error == ENOENT || file.error == ENOTDIR) {
    state_ = State::Missing;
    return;
  }
  if (file.error == 0) {
    if (auto root = parsePropertyListNode(file.bytes); isDictionaryNode(root.get())) {
      setRoot(std::move(root), std::move(file.bytes));
      state_ = State::Read;
      return;
    }
    error_ = EILSEQ;
  }
  state_ = mayPass(error_) && error_ != EILSEQ ? State::Unavailable : State::Unreadable;
  if (!reported || previousError != error_) reportTrouble(error_);
}

void PreferencesFile::reportTrouble(int error) {
  if (error == EILSEQ) {
    lines_.push_back(path_ + " is no property list with keys; it counts as empty");
  } else {
    lines_.push_back(failure(error).localizedDescription + "; it counts as empty");
  }
}

std::optional<NSError> PreferencesFile::storePending() {
  if (pending_.empty()) return std::nullopt;
  const auto target = resolveFileLinks(path_);
  if (!target) return failure(errno);
  const auto lock = PreferencesLock::acquire(hiddenSibling(*target, "lock"), limits_.lockPatience);
  if (!lock) return failure(errno);
  refresh();
  if (state_ == State::Unavailable) return failure(error_);
  setRoot(root_ ? std::move(root_) : makeDictionaryNode());
  auto error = applyPending(root_.get()) ? replace(*target) : std::nullopt;
  if (error || state_ != State::Read) {
    setRoot(nullptr);
    state_ = State::Unknown;
  }
  if (!error) pending_.clear();
  return error;
}

bool PreferencesFile::applyPending(void* root) {
  bool changed = false;
  for (const auto& [key, value] : pending_) {
    if (value) {
      plist_dict_set_item(root, key.c_str(), nodeOfValue(*value).release());
    } else if (plist_dict_get_item(root, key.c_str()) != nullptr) {
      plist_dict_remove_item(root, key.c_str());
    } else {
      continue;
    }
    changed = true;
  }
  return changed;
}

std::optional<NSError> PreferencesFile::replace(const std::string& target) {
  const std::string bytes = binaryPropertyList(root_.get());
  if (bytes.empty()) return failure(ENOMEM);
  const std::string fresh = hiddenSibling(target, "new");
  FileStamp stamp;
  if (const int error = writeNewFile(fresh, bytes, stamp)) return failure(error);
  if (state_ == State::Unreadable) {
    const auto name = setAside(target);
    if (!name) {
      const int error = errno;
      std::remove(fresh.c_str());
      return failure(error);
    }
    lines_.push_back(target + " could not be read; it was set aside as " + *name);
  }
  if (std::rename(fresh.c_str(), target.c_str()) != 0) {
    const int error = errno;
    std::remove(fresh.c_str());
    return failure(error);
  }
  stamp_ = stamp;
  state_ = State::Read;
  error_ = 0;
  unflushed_ = true;
  return std::nullopt;
}

NSError PreferencesFile::failure(int error) const {
  NSError result = posixError(error, path_);
  result.filePath = path_;
  return result;
}

}  // namespace vornix
