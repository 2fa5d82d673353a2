#pragma once

#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "analytics/VXAnalyticsTracker.h"
#include "tests/fakes/FakeApplicationService.h"
#include "tests/fakes/FakeHardwareRegistry.h"
#include "tests/fakes/FakeHttpClient.h"
#include "tests/fakes/FakePreferencesStore.h"
#include "tests/fakes/FakeProcessInfo.h"
#include "tests/fakes/FakeResourceFiles.h"
#include "tests/fakes/FakeScreen.h"
#include "tests/fakes/FakeSystemClock.h"

namespace vornix {

// A hit as it stands in a URL. Values stay escaped.
using Hit = std::map<std::string, std::string, std::less<>>;
[[nodiscard]] Hit hitOf(const std::string& url);

// A tracker among fakes, apart from the process's own. Its queued requests complete on the worker
// that sent them, so that no run loop must turn.
class TrackerFixture : public testing::Test {
 protected:
  TrackerFixture();
  ~TrackerFixture() override;

  // Made when first asked for, from the services as they then stand.
  [[nodiscard]] VXAnalyticsTracker& tracker();
  void dropTracker();
  [[nodiscard]] const std::shared_ptr<VXAnalyticsTracker>& sharedTracker();

  // Everything sent so far, in order; waits for what is queued.
  [[nodiscard]] std::vector<std::string> urls();
  [[nodiscard]] std::vector<Hit> hits();
  // The values of one parameter in those hits; "-" where a hit has none.
  [[nodiscard]] std::vector<std::string> sent(std::string_view parameter);

  // The tester gives this option to this case, which is running from now on.
  void runExperiment(std::int64_t number, std::int64_t option);
  // The main application is there, with this version.
  void installMainApplication(const std::string& version);

  static constexpr std::string_view kMainDomain = "com.orvane.Vornix3";
  static constexpr std::string_view kOwnDomain = "com.orvane.Vornix3.Scheduler";

  fakes::FakePreferencesStore store_;
  fakes::FakeSystemClock clock_;
  fakes::FakeApplicationService applications_;
  fakes::FakeHardwareRegistry registry_;
  fakes::FakeProcessInfo process_;
  fakes::FakeScreen screen_;
  fakes::FakeHttpClient http_;
  NSNotificationCenter center_;
  NSWorkspace workspace_{applications_};
  std::shared_ptr<NSUserDefaults> defaults_ =
      std::make_shared<NSUserDefaults>(std::string(kOwnDomain), store_, center_);
  std::shared_ptr<VXDistributedPreferences> preferences_ =
      std::make_shared<VXDistributedPreferences>(defaults_, store_);
  std::shared_ptr<VXABTester> tester_ =
      std::make_shared<VXABTester>(preferences_, defaults_, [](std::uint32_t) { return 0U; });
  NSBundle bundle_{"", {}, Dictionary{}};
  AnalyticsConfiguration configuration_{.collectionHost = "collect.example",
                                        .productionIdentifier = "UA-1-1",
                                        .debugIdentifier = "UA-1-2",
                                        .backupIdentifier = "UA-1-3",
                                        .categoryIdentifiers = {{"Scheduler", "UA-1-4"}}};
  int configurationsRead_ = 0;
  std::atomic<int> clientsMade_ = 0;
  AnalyticsServices services_ = services();

 private:
  [[nodiscard]] AnalyticsServices services();

  std::shared_ptr<VXAnalyticsTracker> tracker_;
};

}  // namespace vornix
