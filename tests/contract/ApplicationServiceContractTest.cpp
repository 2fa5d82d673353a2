#include "platform/desktop/ApplicationService.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <list>

#include "platform/base/Diagnostics.h"
#include "platform/base/Text.h"
#include "platform/linux/desktop/applications/LinuxApplicationService.h"
#include "tests/fakes/FakeApplicationService.h"
#include "tests/support/FakeApplicationBus.h"
#include "tests/support/StandInApplication.h"

namespace vornix {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// A desktop on which applications can be installed, and what is to be known beside its service.
class Desktop {
 public:
  virtual ~Desktop() = default;
  virtual ApplicationService& service() = 0;
  // Answers the bundle's path.
  virtual std::string install(const std::string& identifier) = 0;
  virtual bool waitForEnd(const RunningApplicationEntry& application) = 0;
};

// The person's own applications run as well, and those of other tests.
std::string nameOfThisTest(const std::string& name) {
  const std::string test = testing::UnitTest::GetInstance()->current_test_info()->name();
  return "org.example." + test + std::to_string(getpid()) + "." + name;
}

class FakeDesktop final : public Desktop {
 public:
  ApplicationService& service() override { return service_; }
  std::string install(const std::string& identifier) override {
    return service_.install(identifier);
  }
  bool waitForEnd(const RunningApplicationEntry& /*application*/) override { return true; }

 private:
  fakes::FakeApplicationService service_;
};

// Real programs and processes, without a bus.
class LinuxDesktop final : public Desktop {
 public:
  LinuxDesktop() {
    setDiagnosticReceiver([](std::string_view) {});
    desktop::DesktopSession session =
        desktop::DesktopSession::ofProcess(NSProcessInfo::processInfo());
    session.applicationFolders = {tests::StandInApplication::dataFolder(folder_) + "/applications"};
    service_ = desktop::makeApplicationService(session, bus_, windows_);
  }
  ~LinuxDesktop() override { setDiagnosticReceiver({}); }

  ApplicationService& service() override { return *service_; }
  std::string install(const std::string& identifier) override {
    return applications_.emplace_back(folder_, identifier).entryPath();
  }
  bool waitForEnd(const RunningApplicationEntry& application) override {
    return tests::waitForEnd(application.processIdentifier);
  }

  tests::FakeApplicationBus bus_;
  tests::FakeWindowActivation windows_;

 private:
  tests::ScratchFolder folder_;
  std::list<tests::StandInApplication> applications_;
  std::unique_ptr<ApplicationService> service_;
};

template <typename T>
class ApplicationServiceContract : public testing::Test {
 protected:
  RunningApplicationEntry launch(const std::string& path, bool newInstance = false) {
    std::optional<NSError> error;
    ApplicationLaunch request;
    request.bundlePath = path;
    request.newInstance = newInstance;
    const auto application = service.launch(request, error);
    EXPECT_TRUE(application) << (error ? error->description() : "");
    EXPECT_EQ(error, std::nullopt);
    return application.value_or(RunningApplicationEntry{});
  }

  std::vector<RunningApplicationEntry> running() {
    auto all = service.runningApplications();
    std::erase_if(all, [](const RunningApplicationEntry& entry) {
      return !entry.bundleIdentifier.starts_with(nameOfThisTest(""));
    });
    return all;
  }

  T desktop;
  ApplicationService& service = desktop.service();
};

using Desktops = testing::Types<FakeDesktop, LinuxDesktop>;
TYPED_TEST_SUITE(ApplicationServiceContract, Desktops);

TYPED_TEST(ApplicationServiceContract, KnowsInstalledApplicationsIgnoringCase) {
  const auto path = this->desktop.install(nameOfThisTest("App"));
  EXPECT_EQ(this->service.applicationPath(nameOfThisTest("App")), path);
  EXPECT_EQ(this->service.applicationPath(text::asciiUppercase(nameOfThisTest("App"))), path);
  EXPECT_EQ(this->service.applicationPath("org.example.Missing"), std::nullopt);
  EXPECT_EQ(this->service.applicationPath(""), std::nullopt);
}

TYPED_TEST(ApplicationServiceContract, ListsWhatItLaunchedInLaunchOrder) {
  const auto pathOfOne = this->desktop.install(nameOfThisTest("One"));
  const auto pathOfTwo = this->desktop.install(nameOfThisTest("Two"));
  EXPECT_THAT(this->running(), IsEmpty());

  const auto two = this->launch(pathOfTwo);
  const auto one = this->launch(pathOfOne);

  EXPECT_EQ(one.bundleIdentifier, nameOfThisTest("One"));
  EXPECT_GT(one.processIdentifier, 0);
  EXPECT_LE(two.launchDate, one.launchDate);
  EXPECT_THAT(this->running(), ElementsAre(two, one));
}

TYPED_TEST(ApplicationServiceContract, AnswersTheRunningApplicationInsteadOfASecondOne) {
  const auto path = this->desktop.install(nameOfThisTest("App"));
  const auto first = this->launch(path);
  EXPECT_EQ(this->launch(path), first);
  EXPECT_THAT(this->running(), ElementsAre(first));
}

TYPED_TEST(ApplicationServiceContract, StartsASecondOneWhenAskedTo) {
  const auto path = this->desktop.install(nameOfThisTest("App"));
  const auto first = this->launch(path);
  const auto second = this->launch(path, true);
  EXPECT_NE(second.processIdentifier, first.processIdentifier);
  EXPECT_THAT(this->running(), ElementsAre(first, second));
}

TYPED_TEST(ApplicationServiceContract, EndsAnApplication) {
  const auto path = this->desktop.install(nameOfThisTest("App"));
  const auto first = this->launch(path);
  const auto second = this->launch(path, true);

  EXPECT_TRUE(this->service.terminate(first));

  EXPECT_TRUE(this->desktop.waitForEnd(first));
  EXPECT_THAT(this->running(), ElementsAre(second));
}

TYPED_TEST(ApplicationServiceContract, DoesNotEndWhatDoesNotRun) {
  constexpr std::int32_t kNoProcess = 0x3FFFFFFF;
  for (const std::int32_t process : {0, -1, kNoProcess})
    EXPECT_FALSE(this->service.terminate({"org.example.App", process, Date{}})) << process;
}

TYPED_TEST(ApplicationServiceContract, AnswersAnErrorForABundleThatIsNotThere) {
  std::optional<NSError> error;
  EXPECT_EQ(this->service.launch({.bundlePath = "/nowhere/x.desktop", .files = {}, .arguments = {}},
                                 error),
            std::nullopt);
  ASSERT_TRUE(error);
  EXPECT_FALSE(error->localizedDescription.empty());
}

TYPED_TEST(ApplicationServiceContract, CannotBringToTheFrontWhatDoesNotRun) {
  EXPECT_FALSE(this->service.activate({"org.example.App", 0x3FFFFFFF, Date{}}));
}

TYPED_TEST(ApplicationServiceContract, NamesTheOpenTool) {
  EXPECT_THAT(this->service.openToolPath(), testing::StartsWith("/"));
  EXPECT_THAT(this->service.openToolPath(), testing::EndsWith("/vornix-open"));
}

class LinuxApplicationServiceTest : public testing::Test {
 protected:
  RunningApplicationEntry application{"org.example.App", getpid(), Date{}};
  LinuxDesktop desktop;
  tests::FakeApplicationBus& bus = desktop.bus_;
  tests::FakeWindowActivation& windows = desktop.windows_;
};

TEST_F(LinuxApplicationServiceTest, BringsTheOwnerOfANameToTheFrontWithTheClicksToken) {
  bus.owners = {{"org.example.App", getpid()}};
  bus.token = "click";
  EXPECT_TRUE(desktop.service().activate(application));
  EXPECT_THAT(bus.activated, ElementsAre(testing::Pair("org.example.App", "click")));
  EXPECT_THAT(windows.asked, IsEmpty());
}

TEST_F(LinuxApplicationServiceTest, BringsAWindowToTheFrontWhereNobodyOwnsTheName) {
  windows.processesWithWindows = {getpid()};
  EXPECT_TRUE(desktop.service().activate(application));
  EXPECT_THAT(bus.activated, IsEmpty());
  EXPECT_THAT(windows.asked, ElementsAre(getpid()));
}

TEST_F(LinuxApplicationServiceTest, LaunchingWhatRunsBringsItToTheFrontUnlessToldNotTo) {
  const auto path = desktop.install(nameOfThisTest("App"));
  std::optional<NSError> error;
  const auto first =
      desktop.service().launch({.bundlePath = path, .files = {}, .arguments = {}}, error);
  ASSERT_TRUE(first);
  ApplicationLaunch again;
  again.bundlePath = path;
  again.activate = false;
  EXPECT_EQ(desktop.service().launch(again, error), first);
  EXPECT_THAT(windows.asked, IsEmpty());
  again.activate = true;
  EXPECT_EQ(desktop.service().launch(again, error), first);
  EXPECT_THAT(windows.asked, ElementsAre(first->processIdentifier));
}

}  // namespace
}  // namespace vornix
