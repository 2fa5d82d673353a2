#include "platform/runloop/RunLoopBlockQueue.h"

#include <algorithm>
#include <utility>

namespace vornix {
namespace {

auto eligible(const RunningMode& mode, bool mayTakeMainQueue) {
  return [mode, mayTakeMainQueue](const RunLoopBlockQueue::Entry& entry) {
    return (mayTakeMainQueue || !entry.isOfMainQueue) && entry.modes.contains(mode);
  };
}

}  // namespace

void RunLoopBlockQueue::push(Entry entry) {
  const Lock lock(mutex_);
  entries_.push_back(std::move(entry));
}

std::optional<RunLoopBlockQueue::Entry> RunLoopBlockQueue::take(const RunningMode& mode,
                                                                bool mayTakeMainQueue) {
  const Lock lock(mutex_);
  const auto found =
      std::find_if(entries_.begin(), entries_.end(), eligible(mode, mayTakeMainQueue));
  if (found == entries_.end()) return std::nullopt;
  std::optional<Entry> entry(std::move(*found));
  entries_.erase(found);
  return entry;
}

bool RunLoopBlockQueue::hasBlock(const RunningMode& mode, bool mayTakeMainQueue) const {
  const Lock lock(mutex_);
  return std::any_of(entries_.begin(), entries_.end(), eligible(mode, mayTakeMainQueue));
}

}  // namespace vornix
