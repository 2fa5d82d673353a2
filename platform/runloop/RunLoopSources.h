#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "platform/runloop/EventWaiter.h"
#include "platform/runloop/RunLoopModeSet.h"

namespace vornix {

// The sources of a loop. Those that are ready at the same time are served in turn. Owning thread
// only.
class RunLoopSources {
 public:
  // A source that is there already gets the new modes.
  void add(std::shared_ptr<RunLoopSource> source, const RunLoopModes& modes);
  void remove(const RunLoopSource& source);
  [[nodiscard]] bool hasSource(const RunningMode& mode) const;

  // Waits until the deadline at the most and serves one ready source of the mode; false when none
  // was ready.
  bool waitAndServe(const RunningMode& mode, EventWaiter& waiter, std::optional<double> deadline);

 private:
  struct Entry {
    std::shared_ptr<RunLoopSource> source;
    RunLoopModeSet modes;
    std::uint64_t number = 0;
    bool isBeingServed = false;
  };
  struct Watched {
    std::shared_ptr<Entry> entry;
    std::optional<double> dueDate;
    bool isReady = false;
  };

  [[nodiscard]] std::vector<Watched> watched(const RunningMode& mode,
                                             const EventWaiter& waiter) const;
  [[nodiscard]] std::shared_ptr<Entry> nextInTurn(const std::vector<Watched>& watched) const;
  void serve(const std::shared_ptr<Entry>& entry);

  std::vector<std::shared_ptr<Entry>> entries_;
  std::uint64_t lastNumber_ = 0;
  std::uint64_t lastServed_ = 0;
};

}  // namespace vornix
