#include "tests/fakes/FakeSystemLog.h"

#include <utility>

namespace vornix::fakes {

class FakeSystemLog::Client final : public SystemLogClient {
 public:
  Client(FakeSystemLog& log, std::optional<std::string> facility)
      : log_(log), facility_(std::move(facility)) {
    ++log_.opened_;
    ++log_.open_;
  }
  ~Client() override {
    const std::lock_guard lock(log_.mutex_);
    --log_.open_;
  }

  void log(int priority, std::string_view message) override {
    const std::lock_guard lock(log_.mutex_);
    if (!log_.reachable_) return;
    log_.records_.push_back({facility_, priority, std::string(message)});
  }

 private:
  FakeSystemLog& log_;
  std::optional<std::string> facility_;
};

std::unique_ptr<SystemLogClient> FakeSystemLog::open(const std::optional<std::string>& facility) {
  const std::lock_guard lock(mutex_);
  return reachable_ ? std::make_unique<Client>(*this, facility) : nullptr;
}

void FakeSystemLog::setReachable(bool reachable) {
  const std::lock_guard lock(mutex_);
  reachable_ = reachable;
}

std::vector<FakeSystemLog::Record> FakeSystemLog::records() const {
  const std::lock_guard lock(mutex_);
  return records_;
}

int FakeSystemLog::openedClients() const {
  const std::lock_guard lock(mutex_);
  return opened_;
}

int FakeSystemLog::openClients() const {
  const std::lock_guard lock(mutex_);
  return open_;
}

}  // namespace vornix::fakes
