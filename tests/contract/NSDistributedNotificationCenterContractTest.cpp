#include "platform/desktop/NSDistributedNotificationCenter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/base/Diagnostics.h"
#include "platform/linux/desktop/BusDistributedNotificationCenter.h"
#include "platform/runloop/NSRunLoop.h"
#include "tests/fakes/FakeDistributedNotificationCenter.h"
#include "tests/support/PrivateBus.h"

namespace vornix::contract {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::SizeIs;

constexpr double kGenerous = 60;

struct Heard {
  std::string name;
  std::string object;
  Dictionary userInfo;
};

class FakeSession {
 public:
  NSDistributedNotificationCenter& center() { return center_; }
  std::vector<Heard> hear(std::size_t /*count*/) {
    std::vector<Heard> heard;
    for (const auto& posted : center_.posted) {
      heard.push_back({posted.name, posted.object, posted.userInfo});
    }
    return heard;
  }

 private:
  fakes::FakeDistributedNotificationCenter center_;
};

// Another program of the session listens.
class RealSession {
 public:
  RealSession() {
    registration_ = listener_.subscribe(
        {.path = "/com/orvane/DistributedNotificationCenter",
         .interface = "com.orvane.DistributedNotificationCenter",
         .member = "Posted"},
        [this](BusMessage& signal) {
          Heard heard;
          heard.name = signal.readString().value_or("?");
          heard.object = signal.readString().value_or("?");
          heard.userInfo = signal.readDictionary().value_or(Dictionary{{"unreadable", true}});
          heard_.push_back(std::move(heard));
        });
  }
  NSDistributedNotificationCenter& center() { return center_; }
  std::vector<Heard> hear(std::size_t count) {
    EXPECT_TRUE(NSRunLoop::mainRunLoop()->runUntil([this, count] { return heard_.size() >= count; },
                                                   kGenerous));
    return heard_;
  }

 private:
  tests::PrivateBus sessionBus_;
  SessionBus listener_{NSRunLoop::mainRunLoop()};
  SessionBus bus_{NSRunLoop::mainRunLoop()};
  BusDistributedNotificationCenter center_{bus_};
  BusRegistration registration_;
  std::vector<Heard> heard_;
};

template <typename Session>
class NSDistributedNotificationCenterContract : public testing::Test {
 protected:
  Session session_;
};

using Sessions = testing::Types<FakeSession, RealSession>;
TYPED_TEST_SUITE(NSDistributedNotificationCenterContract, Sessions);

TYPED_TEST(NSDistributedNotificationCenterContract, ReachesOtherProgramsWithNameObjectAndFiles) {
  const Dictionary files{{"Files", Array{"/a b", "/ü"}}};
  this->session_.center().postNotificationName("com.orvane.vornix3.scheduled", "VNXHelper", files,
                                               true);
  const auto heard = this->session_.hear(1);
  ASSERT_THAT(heard, SizeIs(1));
  EXPECT_EQ(heard[0].name, "com.orvane.vornix3.scheduled");
  EXPECT_EQ(heard[0].object, "VNXHelper");
  EXPECT_EQ(heard[0].userInfo, files);
}

TYPED_TEST(NSDistributedNotificationCenterContract, CarriesAnEmptyListOfFiles) {
  this->session_.center().postNotificationName("n", "", {{"Files", Array{}}}, false);
  const auto heard = this->session_.hear(1);
  ASSERT_THAT(heard, SizeIs(1));
  EXPECT_EQ(heard[0].userInfo, (Dictionary{{"Files", Array{}}}));
}

TYPED_TEST(NSDistributedNotificationCenterContract, KeepsTheOrderOfPosting) {
  for (const char* name : {"one", "two", "three"}) {
    this->session_.center().postNotificationName(name, "", {}, true);
  }
  std::vector<std::string> names;
  for (const Heard& heard : this->session_.hear(3)) {
    names.push_back(heard.name);
  }
  EXPECT_THAT(names, ElementsAre("one", "two", "three"));
}

TEST(BusDistributedNotificationCenter, SendsAPathThatIsNoTextAsAFileUrl) {
  RealSession session;
  session.center().postNotificationName("n", "", {{"Files", Array{"/plain", "/a \xFF%ü"}}}, true);
  const auto heard = session.hear(1);
  ASSERT_THAT(heard, SizeIs(1));
  EXPECT_EQ(heard[0].userInfo,
            (Dictionary{{"Files", Array{"/plain", "file:///a%20%FF%25%C3%BC"}}}));
}

TEST(BusDistributedNotificationCenter, SendsARelativePathThatIsNoTextAsAFileUrlToo) {
  RealSession session;
  session.center().postNotificationName("n", "", {{"Files", Array{"a\xFF", "/b", "c"}}}, true);
  const auto heard = session.hear(1);
  ASSERT_THAT(heard, SizeIs(1));
  EXPECT_EQ(heard[0].userInfo, (Dictionary{{"Files", Array{"file://a%FF", "/b", "c"}}}));
}

TEST(BusDistributedNotificationCenter, SendsAPathWithACharacterThatTheBusRefusesAsAFileUrl) {
  RealSession session;
  session.center().postNotificationName("n", "",
                                        {{"Files", Array{"/a\uFFFF", "/\uFDD0", "/\uFFFD"}}}, true);
  const auto heard = session.hear(1);
  ASSERT_THAT(heard, SizeIs(1));
  EXPECT_EQ(heard[0].userInfo,
            (Dictionary{{"Files", Array{"file:///a%EF%BF%BF", "file:///%EF%B7%90", "/\uFFFD"}}}));
}

TEST(BusDistributedNotificationCenter, ReportsASessionThatCannotBeReached) {
  std::vector<std::string> lines;
  setDiagnosticReceiver([&](std::string_view line) { lines.emplace_back(line); });
  tests::forgetSessionBus();
  SessionBus bus(NSRunLoop::mainRunLoop());
  BusDistributedNotificationCenter(bus).postNotificationName("com.orvane.vornix3.scheduled", "", {},
                                                             true);
  setDiagnosticReceiver({});
  EXPECT_THAT(lines, ElementsAre(HasSubstr("com.orvane.vornix3.scheduled")));
}

}  // namespace
}  // namespace vornix::contract
