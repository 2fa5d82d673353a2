#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <thread>
#include <utility>

#include "platform/base/NSObject.h"

namespace vornix {
namespace {

using testing::ElementsAre;

class Person final : public NSObject {
 public:
  void setAge(int age) {
    willChangeValueForKey("age");
    age_ = age;
    didChangeValueForKey("age");
  }
  void setAgeSilently(int age) { age_ = age; }
  [[nodiscard]] int age() const { return age_; }

 private:
  int age_ = 0;
};

class Watcher final : public NSObject {
 public:
  void observeValueForKeyPath(std::string_view keyPath, NSObject& object) override {
    keys.emplace_back(keyPath);
    if (const auto* person = dynamic_cast<Person*>(&object)) ages.push_back(person->age());
    if (action) action();
  }

  std::vector<std::string> keys;
  std::vector<int> ages;
  std::function<void()> action;
};

class KeyValueObserving : public testing::Test {
 protected:
  std::shared_ptr<Person> person_ = std::make_shared<Person>();
  std::shared_ptr<Watcher> watcher_ = std::make_shared<Watcher>();
  std::shared_ptr<Watcher> second_ = std::make_shared<Watcher>();
};

TEST_F(KeyValueObserving, DeliversInsideTheSetterAfterTheNewValueIsStored) {
  person_->addObserver(watcher_, "age");
  EXPECT_TRUE(watcher_->keys.empty());
  std::thread::id deliveredOn;
  watcher_->action = [&] { deliveredOn = std::this_thread::get_id(); };
  std::thread::id changedOn;
  std::thread changer([&] {
    changedOn = std::this_thread::get_id();
    person_->setAge(36);
    EXPECT_THAT(watcher_->ages, ElementsAre(36));
  });
  changer.join();
  EXPECT_THAT(watcher_->keys, ElementsAre("age"));
  EXPECT_EQ(deliveredOn, changedOn);
}

TEST_F(KeyValueObserving, AnEqualValueIsAnnouncedToo) {
  person_->addObserver(watcher_, "age");
  person_->setAge(36);
  person_->setAge(36);
  EXPECT_THAT(watcher_->ages, ElementsAre(36, 36));
}

TEST_F(KeyValueObserving, WritingTheMemberDirectlyAnnouncesNothing) {
  person_->addObserver(watcher_, "age");
  person_->setAgeSilently(36);
  EXPECT_TRUE(watcher_->keys.empty());
}

TEST_F(KeyValueObserving, TheWillChangeNoticeAloneReachesNobody) {
  person_->addObserver(watcher_, "age");
  person_->willChangeValueForKey("age");
  EXPECT_TRUE(watcher_->keys.empty());
  person_->didChangeValueForKey("age");
  EXPECT_THAT(watcher_->keys, ElementsAre("age"));
}

TEST_F(KeyValueObserving, OnlyObserversOfTheKeyAreTold) {
  person_->addObserver(watcher_, "name");
  person_->addObserver(second_, "age");
  person_->setAge(36);
  EXPECT_TRUE(watcher_->keys.empty());
  EXPECT_THAT(second_->keys, ElementsAre("age"));
}

TEST_F(KeyValueObserving, ARemovedObserverIsNotTold) {
  person_->addObserver(watcher_, "age");
  person_->addObserver(watcher_, "name");
  person_->removeObserver(*watcher_, "age");
  person_->removeObserver(*second_, "age");
  person_->setAge(36);
  person_->didChangeValueForKey("name");
  EXPECT_THAT(watcher_->keys, ElementsAre("name"));
}

TEST_F(KeyValueObserving, AnObserverThatHasDiedIsSkipped) {
  person_->addObserver(watcher_, "age");
  person_->addObserver(second_, "age");
  watcher_.reset();
  person_->setAge(36);
  EXPECT_THAT(second_->ages, ElementsAre(36));
}

TEST_F(KeyValueObserving, AnObserverIsNotKeptAlive) {
  const std::weak_ptr<Watcher> watched = watcher_;
  person_->addObserver(watcher_, "age");
  watcher_.reset();
  EXPECT_TRUE(watched.expired());
}

TEST_F(KeyValueObserving, AnObserverMayRemoveItselfAndAnotherDuringDelivery) {
  person_->addObserver(watcher_, "age");
  person_->addObserver(second_, "age");
  watcher_->action = [&] {
    person_->removeObserver(*watcher_, "age");
    person_->removeObserver(*second_, "age");
  };
  person_->setAge(36);
  person_->setAge(37);
  EXPECT_THAT(watcher_->ages, ElementsAre(36));
  EXPECT_TRUE(second_->ages.empty());
}

TEST_F(KeyValueObserving, AnObserverAddedDuringDeliveryWaitsForTheNextChange) {
  person_->addObserver(watcher_, "age");
  watcher_->action = [&] {
    person_->addObserver(second_, "age");
    watcher_->action = nullptr;
  };
  person_->setAge(36);
  EXPECT_TRUE(second_->ages.empty());
  person_->setAge(37);
  EXPECT_THAT(second_->ages, ElementsAre(37));
}

TEST_F(KeyValueObserving, AnObserverMayReleaseTheObservedObject) {
  Person& person = *person_;
  person_->addObserver(watcher_, "age");
  person_->addObserver(second_, "age");
  watcher_->action = [&] { person_.reset(); };
  person.setAge(36);
  EXPECT_EQ(person_, nullptr);
  EXPECT_THAT(second_->ages, ElementsAre(36));
}

TEST_F(KeyValueObserving, AMissingObserverIsIgnored) {
  person_->addObserver(nullptr, "age");
  person_->setAge(36);
  EXPECT_EQ(person_->age(), 36);
}

// Takes minutes where each new observer costs a look at all others.
TEST_F(KeyValueObserving, MayHaveVeryManyObserversAlsoWhereTheyComeAndGo) {
  constexpr std::size_t count = 100'000;
  std::vector<std::shared_ptr<Watcher>> watchers;
  for (std::size_t number = 0; number < count; ++number) {
    watchers.push_back(std::make_shared<Watcher>());
    person_->addObserver(watchers.back(), "age");
    person_->addObserver(std::make_shared<Watcher>(), "age");
  }
  person_->setAge(1);
  for (const auto& watcher : watchers) ASSERT_THAT(watcher->ages, ElementsAre(1));
}

}  // namespace
}  // namespace vornix
