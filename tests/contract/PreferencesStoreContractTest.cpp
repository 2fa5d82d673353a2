#include "platform/preferences/PreferencesStore.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <thread>
#include <vector>

#include "platform/linux/preferences/LinuxPreferencesStore.h"
#include "tests/fakes/FakePreferencesStore.h"
#include "tests/support/ScratchFolder.h"

namespace vornix {
namespace {

constexpr std::string_view kDomain = "com.example.domain";
constexpr auto kCurrent = PreferencesUser::Current;

class FakeSetting {
 public:
  PreferencesStore& store() { return store_; }

 private:
  fakes::FakePreferencesStore store_;
};

class LinuxSetting {
 public:
  PreferencesStore& store() { return store_; }

 private:
  tests::ScratchFolder folder_;
  LinuxPreferencesStore store_{folder_.path(), folder_.path("any")};
};

template <typename Setting>
class PreferencesStoreContractTest : public testing::Test {
 protected:
  std::optional<Value> copy(std::string_view key, std::string_view domain = kDomain) {
    return setting_.store().copyValue(key, domain, kCurrent);
  }
  std::optional<NSError> set(std::string_view key, const std::optional<Value>& value,
                             std::string_view domain = kDomain) {
    return setting_.store().setValue(key, value, domain);
  }

  Setting setting_;
};

using Settings = testing::Types<FakeSetting, LinuxSetting>;
TYPED_TEST_SUITE(PreferencesStoreContractTest, Settings);

TYPED_TEST(PreferencesStoreContractTest, AnswersNothingForAMissingKeyOrDomain) {
  EXPECT_EQ(this->copy("Key"), std::nullopt);
  EXPECT_EQ(this->set("Other", Value(1)), std::nullopt);
  EXPECT_EQ(this->copy("Key"), std::nullopt);
  EXPECT_EQ(this->setting_.store().copyValue("Other", kDomain, PreferencesUser::Any), std::nullopt);
}

TYPED_TEST(PreferencesStoreContractTest, KeepsEveryKindOfValueWithItsType) {
  const Value values[] = {true,
                          false,
                          0,
                          -5,
                          std::numeric_limits<std::int64_t>::max(),
                          std::numeric_limits<std::int64_t>::min(),
                          0.1,
                          -1e300,
                          1.0,
                          "",
                          "text",
                          "K\u00e4se \U0001F9C0",
                          Date{500000000.123456789},
                          Date{-1e12},
                          Data{},
                          Data{std::byte{0}, std::byte{255}},
                          Array{},
                          Array{1, "two", Array{Value(3.5)}},
                          Dictionary{},
                          Dictionary{{"b", 1}, {"a", Dictionary{{"deep", Date{0.25}}}}}};
  for (const Value& value : values) {
    EXPECT_EQ(this->set("Key", value), std::nullopt) << value.description();
    const auto read = this->copy("Key");
    ASSERT_TRUE(read.has_value()) << value.description();
    EXPECT_EQ(read->storage().index(), value.storage().index()) << value.description();
    EXPECT_EQ(*read, value);
  }
}

TYPED_TEST(PreferencesStoreContractTest, LeavesOtherKeysAndDomainsAlone) {
  this->set("A", Value(1));
  this->set("B", Value(2));
  this->set("A", Value(3), "com.example.other");
  this->set("A", std::nullopt);
  EXPECT_EQ(this->copy("A"), std::nullopt);
  EXPECT_EQ(this->copy("B"), Value(2));
  EXPECT_EQ(this->copy("A", "com.example.other"), Value(3));
}

TYPED_TEST(PreferencesStoreContractTest, RemovesAKeyThatIsNotThereWithoutAnError) {
  EXPECT_EQ(this->set("Key", std::nullopt), std::nullopt);
  EXPECT_EQ(this->copy("Key"), std::nullopt);
}

TYPED_TEST(PreferencesStoreContractTest, SynchronizesWhatWasSetAndDomainsNeverTouched) {
  this->set("Key", Value(1));
  EXPECT_TRUE(this->setting_.store().synchronize(kDomain));
  EXPECT_TRUE(this->setting_.store().synchronize("com.example.never"));
  EXPECT_TRUE(this->setting_.store().synchronizeAll());
}

TYPED_TEST(PreferencesStoreContractTest, LosesNothingBetweenThreads) {
  constexpr int kThreads = 4;
  constexpr int kKeys = 25;
  std::vector<std::thread> threads;
  threads.reserve(kThreads);
  for (int thread = 0; thread < kThreads; ++thread) {
    threads.emplace_back([this, thread] {
      for (int key = 0; key < kKeys; ++key) {
        const std::string name = std::to_string(thread) + "." + std::to_string(key);
        EXPECT_EQ(this->set(name, Value(key)), std::nullopt);
        EXPECT_EQ(this->copy(name), Value(key));
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (int thread = 0; thread < kThreads; ++thread) {
    for (int key = 0; key < kKeys; ++key) {
      EXPECT_EQ(this->copy(std::to_string(thread) + "." + std::to_string(key)), Value(key));
    }
  }
}

}  // namespace
}  // namespace vornix
