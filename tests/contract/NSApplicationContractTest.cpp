#include "platform/desktop/NSApplication.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/base/Text.h"
#include "tests/contract/support/ForkedProcess.h"
#include "tests/fakes/FakeApplication.h"

namespace vornix::contract {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;

// Lines that outlive the process that writes them.
class Diary {
 public:
  Diary() { EXPECT_EQ(pipe2(ends_.data(), O_CLOEXEC), 0); }
  ~Diary() {
    for (const int end : ends_) close(end);
  }
  Diary(const Diary&) = delete;
  Diary& operator=(const Diary&) = delete;

  void note(std::string line) const {
    line += '\n';
    EXPECT_EQ(write(ends_[1], line.data(), line.size()), static_cast<ssize_t>(line.size()));
  }
  // Once all who write have ended; nothing can be noted any more.
  std::vector<std::string> lines() {
    close(ends_[1]);
    ends_[1] = -1;
    std::string text;
    std::array<char, 256> bytes{};
    for (ssize_t count = 1; count > 0;) {
      count = read(ends_[0], bytes.data(), bytes.size());
      if (count > 0) text.append(bytes.data(), static_cast<std::size_t>(count));
    }
    auto all = text::split(text, "\n");
    all.pop_back();
    return all;
  }

 private:
  std::array<int, 2> ends_{};
};

// Preferences that note when they are made durable.
class NotingPreferences final : public PreferencesStore {
 public:
  explicit NotingPreferences(const Diary& diary) : diary_(diary) {}
  [[nodiscard]] std::optional<Value> copyValue(std::string_view, std::string_view,
                                               PreferencesUser) override {
    return std::nullopt;
  }
  std::optional<NSError> setValue(std::string_view, const std::optional<Value>&,
                                  std::string_view) override {
    return std::nullopt;
  }
  bool synchronize(std::string_view) override { return true; }
  bool synchronizeAll() override {
    diary_.note("preferences are durable");
    return true;
  }

 private:
  const Diary& diary_;
};

// Lives in this very process: `terminate` returns.
class FakeLife {
 public:
  using Application = fakes::FakeApplication;
  static constexpr const char* kEnd = "terminate has returned";
  static std::optional<int> endStatusOf(const std::function<void()>& life) {
    life();
    return std::nullopt;
  }
  static constexpr std::optional<int> kEndStatus = std::nullopt;
};

// Lives in a process of its own: `terminate` ends it.
class RealLife {
 public:
  using Application = NSApplication;
  static constexpr const char* kEnd = nullptr;
  static std::optional<int> endStatusOf(const std::function<void()>& life) {
    return ForkedProcess(life).awaitEnd();
  }
  static constexpr std::optional<int> kEndStatus = 0;
};

template <typename Life>
class NSApplicationContract : public testing::Test {
 protected:
  using Application = typename Life::Application;

  // Ends an application that was prepared so; tells what happened.
  std::vector<std::string> lifeOf(const std::function<void(Application&)>& prepare) {
    const auto status = Life::endStatusOf([&] {
      NotingPreferences preferences(diary_);
      const auto application = std::make_shared<Application>(preferences);
      prepare(*application);
      application->terminate(nullptr);
      diary_.note("terminate has returned");
      for (const auto& token : tokens_) center_.removeObserver(token);
    });
    EXPECT_EQ(status, Life::kEndStatus);
    return diary_.lines();
  }

  void observeEnd(NSNotificationCenter::Handler handler, const NSObject* object = nullptr) {
    tokens_.push_back(
        center_.addObserver(NSApplicationWillTerminateNotification, std::move(handler), object));
  }

  // These lines, and what comes after the end, if anything does.
  static std::vector<std::string> upToTheEnd(std::vector<std::string> lines) {
    if (Life::kEnd != nullptr) lines.emplace_back(Life::kEnd);
    return lines;
  }

  Diary diary_;
  NSNotificationCenter& center_ = NSNotificationCenter::defaultCenter();
  std::vector<NSNotificationCenter::ObserverToken> tokens_;
};

using Lives = testing::Types<FakeLife, RealLife>;
TYPED_TEST_SUITE(NSApplicationContract, Lives);

TYPED_TEST(NSApplicationContract, AnnouncesTheEndThenSavesPreferencesThenEnds) {
  const auto lines = this->lifeOf([this](auto& application) {
    this->observeEnd([this](const NSNotification&) { this->diary_.note("announced"); },
                     &application);
  });
  EXPECT_THAT(lines, ElementsAreArray(this->upToTheEnd({"announced", "preferences are durable"})));
}

TYPED_TEST(NSApplicationContract, NamesItselfInTheAnnouncement) {
  const auto lines = this->lifeOf([this](auto& application) {
    this->observeEnd([this, &application](const NSNotification& notification) {
      this->diary_.note(notification.object.get() == &application ? "itself" : "another");
      this->diary_.note(notification.name);
    });
  });
  EXPECT_THAT(
      lines, ElementsAreArray(this->upToTheEnd(
                 {"itself", "NSApplicationWillTerminateNotification", "preferences are durable"})));
}

TYPED_TEST(NSApplicationContract, TellsEveryObserverInOrder) {
  const auto lines = this->lifeOf([this](auto&) {
    for (const char* name : {"first", "second"})
      this->observeEnd([this, name](const NSNotification&) { this->diary_.note(name); });
  });
  EXPECT_THAT(lines,
              ElementsAreArray(this->upToTheEnd({"first", "second", "preferences are durable"})));
}

TYPED_TEST(NSApplicationContract, AnObserverThatAsksForTheEndAgainGoesOn) {
  const auto lines = this->lifeOf([this](auto& application) {
    this->observeEnd([this, &application](const NSNotification&) {
      this->diary_.note("announced");
      application.terminate(nullptr);
      this->diary_.note("asked again");
    });
  });
  EXPECT_THAT(
      lines,
      ElementsAreArray(this->upToTheEnd({"announced", "asked again", "preferences are durable"})));
}

TYPED_TEST(NSApplicationContract, EndsWithoutAnybodyWhoObserves) {
  EXPECT_THAT(this->lifeOf([](auto&) {}),
              ElementsAreArray(this->upToTheEnd({"preferences are durable"})));
}

TYPED_TEST(NSApplicationContract, TakesWhoeverAsksForTheEnd) {
  const auto lines = this->lifeOf([](auto& application) {
    const auto sender = std::make_shared<NSApplication>();
    application.terminate(sender.get());
  });
  EXPECT_EQ(lines.front(), "preferences are durable");
  EXPECT_EQ(std::ranges::count(lines, "preferences are durable"), 1);
}

TEST(FakeApplication, CountsASecondEndWithoutAnnouncingIt) {
  Diary diary;
  NotingPreferences preferences(diary);
  fakes::FakeApplication application(preferences);
  for (int time = 0; time < 2; ++time) application.terminate(&application);
  EXPECT_EQ(application.terminations, 2);
  EXPECT_EQ(application.lastSender, &application);
  EXPECT_THAT(diary.lines(), ElementsAre("preferences are durable"));
}

TEST(RealApplication, WritesOutWhatIsBufferedBeforeItEnds) {
  int ends[2];
  ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
  const ForkedProcess process([&ends] {
    FILE* const output = fdopen(ends[1], "w");
    std::fputs("buffered", output);
    NSApplication::sharedApplication().terminate(nullptr);
  });
  EXPECT_EQ(process.awaitEnd(), 0);
  close(ends[1]);
  std::array<char, 16> bytes{};
  EXPECT_EQ(read(ends[0], bytes.data(), bytes.size()), 8);
  EXPECT_STREQ(bytes.data(), "buffered");
  close(ends[0]);
}

}  // namespace
}  // namespace vornix::contract
