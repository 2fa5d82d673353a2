#include "tests/unit/analytics/TrackerFixture.h"

#include "platform/base/Text.h"

namespace vornix {
namespace {

// Apart from the process's tracker, and as short-lived as its test.
class LooseTracker final : public VXAnalyticsTracker {
 public:
  explicit LooseTracker(AnalyticsServices services) : VXAnalyticsTracker(std::move(services)) {}
  using VXAnalyticsTracker::setUp;
};

class Forwarder final : public HttpClient {
 public:
  explicit Forwarder(HttpClient& target) : target_(target) {}
  [[nodiscard]] HttpResponse send(const HttpRequest& request) override {
    return target_.send(request);
  }

 private:
  HttpClient& target_;
};

}  // namespace

Hit hitOf(const std::string& url) {
  Hit hit;
  for (const auto& pair : text::split(url.substr(url.find('?') + 1), "&")) {
    const auto equals = pair.find('=');
    hit[pair.substr(0, equals)] = pair.substr(equals + 1);
  }
  return hit;
}

TrackerFixture::TrackerFixture() = default;

TrackerFixture::~TrackerFixture() = default;

VXAnalyticsTracker& TrackerFixture::tracker() {
  return *sharedTracker();
}

const std::shared_ptr<VXAnalyticsTracker>& TrackerFixture::sharedTracker() {
  if (!tracker_) {
    auto tracker = std::make_shared<LooseTracker>(services_);
    tracker->setUp();
    tracker_ = tracker;
  }
  return tracker_;
}

void TrackerFixture::dropTracker() {
  tracker_.reset();
}

AnalyticsServices TrackerFixture::services() {
  return {.userDefaults = defaults_,
          .distributedPreferences = preferences_,
          .abTester = tester_,
          .workspace = workspace_,
          .notificationCenter = center_,
          .mainBundle = bundle_,
          .hardwareRegistry = registry_,
          .processInfo = process_,
          .clock = clock_,
          .mainScreenSize = [this] { return screen_.mainScreenSize(); },
          .mainWindowSize = noWindow,
          .preferredLanguages =
              [] {
                return std::vector<std::string>{"de-DE", "en"};
              },
          .loadConfiguration =
              [this] {
                ++configurationsRead_;
                return configuration_;
              },
          .makeHttpClient = [this](const std::string&) -> std::unique_ptr<HttpClient> {
            ++clientsMade_;
            return std::make_unique<Forwarder>(http_);
          },
          .dispatchOnMainQueue = [](const std::function<void()>& block) { block(); }};
}

void TrackerFixture::runExperiment(std::int64_t number, std::int64_t option) {
  tester_->setActiveCases({number});
  tester_->setOption(option, number);
}

void TrackerFixture::installMainApplication(const std::string& version) {
  const auto path = applications_.install(std::string(kMainDomain));
  fakes::resourceFiles().setApplicationInfo(path, {{"CFBundleVersion", version}});
}

std::vector<std::string> TrackerFixture::urls() {
  tracker().connectionQueue()->waitUntilAllOperationsAreFinished();
  tracker().sendingLock()->waitForUnlock();
  std::vector<std::string> urls;
  for (const auto& request : http_.requests()) urls.push_back(request.url);
  return urls;
}

std::vector<Hit> TrackerFixture::hits() {
  std::vector<Hit> hits;
  for (const auto& url : urls()) hits.push_back(hitOf(url));
  return hits;
}

std::vector<std::string> TrackerFixture::sent(std::string_view parameter) {
  std::vector<std::string> values;
  for (const auto& hit : hits()) {
    const auto found = hit.find(parameter);
    values.push_back(found == hit.end() ? "-" : found->second);
  }
  return values;
}

}  // namespace vornix
