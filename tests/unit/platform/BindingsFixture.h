#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/bindings/BindingInfo.h"
#include "tests/support/Record.h"
#include "tests/support/ScopedDiagnostics.h"

namespace vornix::tests {

inline std::shared_ptr<NSDictionary> option(std::string_view key, std::shared_ptr<NSObject> value) {
  return std::make_shared<NSDictionary>(
      std::initializer_list<NSDictionary::Entry>{{std::string(key), std::move(value)}});
}

// Does something when its value is set.
class Control final : public NSObject {
 public:
  void setValueForKey(const std::shared_ptr<NSObject>& value, std::string_view key) override {
    values.push_back(std::string(key) + "=" + described(value));
    if (onSet) onSet();
  }

  std::vector<std::string> values;
  std::function<void()> onSet;
};

class Bindings : public testing::Test {
 protected:
  void set(std::string_view keyPath, const Value& value) {
    model_->setValueForKeyPath(number(value), keyPath);
  }

  ScopedDiagnostics diagnostics_;
  std::shared_ptr<Record> room_ = Record::create({{"warmth", number(20)}, {"neighbour", nullptr}});
  std::shared_ptr<Record> model_ =
      Record::create({{"count", number(1)}, {"room", room_}, {"other", nullptr}});
  std::shared_ptr<Control> control_ = std::make_shared<Control>();
};

}  // namespace vornix::tests
