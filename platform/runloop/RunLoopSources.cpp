#include "platform/runloop/RunLoopSources.h"

#include <algorithm>
#include <utility>

#include "platform/runloop/GuardedCall.h"

namespace vornix {

void RunLoopSources::add(std::shared_ptr<RunLoopSource> source, const RunLoopModes& modes) {
  if (!source) return;
  const auto found = std::find_if(entries_.begin(), entries_.end(),
                                  [&](const auto& entry) { return entry->source == source; });
  if (found != entries_.end()) {
    (*found)->modes = RunLoopModeSet(modes);
    return;
  }
  entries_.push_back(std::make_shared<Entry>(
      Entry{.source = std::move(source), .modes = RunLoopModeSet(modes), .number = ++lastNumber_}));
}

void RunLoopSources::remove(const RunLoopSource& source) {
  const auto found = std::find_if(entries_.begin(), entries_.end(), [&](const auto& entry) {
    return entry->source.get() == &source;
  });
  if (found == entries_.end()) return;
  // What the source holds may come back here when it is released.
  const std::shared_ptr<Entry> released = *found;
  entries_.erase(found);
}

bool RunLoopSources::hasSource(const RunningMode& mode) const {
  return std::any_of(entries_.begin(), entries_.end(),
                     [&](const auto& entry) { return entry->modes.contains(mode); });
}

bool RunLoopSources::waitAndServe(const RunningMode& mode, EventWaiter& waiter,
                                  std::optional<double> deadline) {
  auto sources = watched(mode, waiter);
  std::vector<WaitHandle> handles;
  handles.reserve(sources.size());
  for (const auto& [entry, dueDate, isReady] : sources) {
    handles.push_back(entry->source->handle());
    if (dueDate && (!deadline || *dueDate < *deadline)) deadline = dueDate;
  }
  for (const std::size_t position : waiter.wait(deadline, handles)) {
    sources[position].isReady = true;
  }
  for (auto& source : sources) {
    if (source.dueDate && waiter.now() >= *source.dueDate) source.isReady = true;
  }
  const auto entry = nextInTurn(sources);
  if (!entry) return false;
  serve(entry);
  return true;
}

std::vector<RunLoopSources::Watched> RunLoopSources::watched(const RunningMode& mode,
                                                             const EventWaiter& waiter) const {
  std::vector<Watched> result;
  for (const auto& entry : entries_) {
    // A source that cannot go on before its own service has returned would only make the nested
    // loop spin.
    if (entry->isBeingServed || !entry->modes.contains(mode)) continue;
    const auto timeout = entry->source->timeout();
    result.push_back({.entry = entry,
                      .dueDate = timeout ? std::optional(waiter.now() + *timeout) : std::nullopt});
  }
  return result;
}

std::shared_ptr<RunLoopSources::Entry> RunLoopSources::nextInTurn(
    const std::vector<Watched>& watched) const {
  std::shared_ptr<Entry> firstReady;
  for (const auto& [entry, dueDate, isReady] : watched) {
    if (!isReady) continue;
    if (entry->number > lastServed_) return entry;
    if (!firstReady) firstReady = entry;
  }
  return firstReady;
}

void RunLoopSources::serve(const std::shared_ptr<Entry>& entry) {
  lastServed_ = entry->number;
  entry->isBeingServed = true;
  callReportingExceptions([&] { entry->source->perform(); }, "a source of the run loop");
  entry->isBeingServed = false;
}

}  // namespace vornix
