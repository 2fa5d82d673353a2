#pragma once

#include <cstddef>
#include <initializer_list>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "platform/base/NSObject.h"

namespace vornix {

// Keys with objects, which it retains. Never changes. For property-list values, see `Dictionary`.
class NSDictionary final : public NSObject {
 public:
  using Entry = std::pair<const std::string, std::shared_ptr<NSObject>>;

  NSDictionary() = default;
  // An entry without an object is left out; of several with one key the first counts.
  NSDictionary(std::initializer_list<Entry> entries);

  // Null where there is none.
  [[nodiscard]] std::shared_ptr<NSObject> objectForKey(std::string_view key) const;
  [[nodiscard]] std::size_t count() const { return objects_.size(); }

  // The object of the key. None is no mistake.
  [[nodiscard]] std::shared_ptr<NSObject> valueForKey(std::string_view key) override;

  // Equal when both hold equal objects under the same keys.
  [[nodiscard]] bool isEqual(const NSObject& other) const override;
  [[nodiscard]] std::string description() const override;
  [[nodiscard]] std::string_view className() const override { return "NSDictionary"; }

 private:
  [[nodiscard]] Dictionary described() const;

  std::map<std::string, std::shared_ptr<NSObject>, std::less<>> objects_;
};

}  // namespace vornix
