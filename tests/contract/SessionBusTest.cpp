#include "platform/linux/bus/SessionBus.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "tests/support/PrivateBus.h"
#include "tests/support/ScratchFolder.h"

namespace vornix::contract {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

constexpr double kGenerous = 60;
constexpr const char* kName = "com.example.Echo";
constexpr const char* kPath = "/com/example/Echo";

class SessionBusTest : public testing::Test {
 protected:
  static std::shared_ptr<NSRunLoop> loop() { return NSRunLoop::mainRunLoop(); }
  static bool runUntil(const std::function<bool()>& done) {
    return loop()->runUntil(done, kGenerous);
  }

  // An object that answers what it was told.
  BusRegistration serveEcho() {
    auto registration =
        server_.exportObject(kPath, kName,
                             {{"Echo", "a{sv}", "a{sv}",
                               [](BusCall call) {
                                 const auto heard = call.arguments().readDictionary();
                                 call.reply([&](BusMessage& answer) {
                                   answer.writeDictionary(heard.value_or(Dictionary{}));
                                 });
                               }},
                              {"Forget", "", "", [](BusCall) {}}});
    EXPECT_TRUE(server_.requestName(kName, BusNameClaim::exclusive));
    return registration;
  }

  static BusMethod method(const std::string& member) {
    return {.destination = kName, .path = kPath, .interface = kName, .member = member};
  }

  SessionBus server_{loop()};
  SessionBus client_{loop()};
};

TEST_F(SessionBusTest, SaysSoAtOnceWhenThereIsNoSession) {
  tests::forgetSessionBus();
  const auto error = client_.connect();
  ASSERT_TRUE(error);
  EXPECT_THAT(error->localizedDescription, HasSubstr("message bus"));
  EXPECT_FALSE(client_.isConnected());
  EXPECT_EQ(client_.nameOwner("org.freedesktop.DBus"), "");
}

TEST_F(SessionBusTest, SaysSoAtOnceWhenNobodyListens) {
  tests::forgetSessionBus();
  setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/bus", 1);
  EXPECT_TRUE(client_.connect());
  setenv("DBUS_SESSION_BUS_ADDRESS", "no address at all", 1);
  EXPECT_TRUE(client_.connect());
}

TEST_F(SessionBusTest, GivesUpOnABusThatDoesNotAnswer) {
  const tests::ScratchFolder folder;
  const std::string path = folder.path("mute");
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  path.copy(address.sun_path, sizeof address.sun_path - 1);
  const int listener = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  ASSERT_EQ(bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
  ASSERT_EQ(listen(listener, 5), 0);
  setenv("DBUS_SESSION_BUS_ADDRESS", ("unix:path=" + path).c_str(), 1);
  EXPECT_TRUE(client_.connect());
  close(listener);
}

TEST_F(SessionBusTest, ConnectsWhenFirstUsed) {
  const tests::PrivateBus bus;
  EXPECT_FALSE(client_.isConnected());
  EXPECT_TRUE(client_.nameHasOwner("org.freedesktop.DBus"));
  EXPECT_TRUE(client_.isConnected());
}

TEST_F(SessionBusTest, CarriesValuesThereAndBack) {
  const tests::PrivateBus bus;
  const auto echo = serveEcho();
  const Dictionary sent{{"text", "Grüße"},
                        {"truth", true},
                        {"number", -7},
                        {"real", 0.5},
                        {"paths", Array{"/a", "/b"}},
                        {"nothing", Array{}},
                        {"inner", Dictionary{{"key", "value"}}}};
  Dictionary heard;
  client_.callAsync(
      method("Echo"), [&](BusMessage& call) { call.writeDictionary(sent); },
      [&](BusReply reply) { heard = reply.message.readDictionary().value_or(Dictionary{}); });
  EXPECT_TRUE(runUntil([&] { return !heard.empty(); }));
  EXPECT_EQ(heard, sent);
}

TEST_F(SessionBusTest, RefusesACallThatWasDroppedUnanswered) {
  const tests::PrivateBus bus;
  const auto echo = serveEcho();
  std::string error;
  client_.callAsync(method("Forget"), {}, [&](const BusReply& reply) {
    error = reply.error ? reply.error->name : "none";
  });
  EXPECT_TRUE(runUntil([&] { return !error.empty(); }));
  EXPECT_EQ(error, kBusErrorFailed);
}

TEST_F(SessionBusTest, GivesUpOnACallThatNobodyAnswers) {
  const tests::PrivateBus bus;
  const auto echo = serveEcho();
  BusMethod quick = method("Echo");
  quick.timeout = 0.05;
  const BusReply reply = client_.call(quick, [](BusMessage& call) { call.writeDictionary({}); });
  EXPECT_FALSE(reply.succeeded());
}

TEST_F(SessionBusTest, RefusesATextThatTheBusCannotCarry) {
  const tests::PrivateBus bus;
  std::vector<std::string> errors;
  for (const std::string& text : {std::string("\xFF"), std::string("a\0b", 3)}) {
    client_.callAsync(
        method("Echo"),
        [&](BusMessage& call) {
          call.writeDictionary({{"k", text}});
        },
        [&](const BusReply& reply) { errors.push_back(reply.error ? reply.error->name : ""); });
  }
  EXPECT_TRUE(runUntil([&] { return errors.size() == 2; }));
  EXPECT_THAT(errors, ElementsAre(kBusErrorInvalidArguments, kBusErrorInvalidArguments));
}

TEST_F(SessionBusTest, HearsOnlyTheSignalsItAskedFor) {
  const tests::PrivateBus bus;
  std::vector<std::string> heard;
  const auto note = [&heard](BusMessage& signal) {
    heard.push_back(signal.readString().value_or(""));
  };
  const auto one = client_.subscribe({.member = "Told", .firstArgument = "a"}, note);
  const auto all = client_.subscribe({.interface = kName}, note);
  for (const char* text : {"b", "a"}) {
    ASSERT_FALSE(server_.emitSignal(kPath, kName, "Told",
                                    [&](BusMessage& signal) { signal.writeString(text); }));
  }
  EXPECT_TRUE(runUntil([&] { return heard.size() >= 3; }));
  EXPECT_THAT(heard, ElementsAre("b", "a", "a"));
}

TEST_F(SessionBusTest, HearsNothingAfterTheRegistrationWasDropped) {
  const tests::PrivateBus bus;
  int dropped = 0;
  int kept = 0;
  auto registration = client_.subscribe({.interface = kName}, [&](BusMessage&) { ++dropped; });
  const auto other = client_.subscribe({.interface = kName}, [&](BusMessage&) { ++kept; });
  registration.reset();
  ASSERT_FALSE(server_.emitSignal(kPath, kName, "Told", {}));
  EXPECT_TRUE(runUntil([&] { return kept > 0; }));
  EXPECT_EQ(dropped, 0);
}

TEST_F(SessionBusTest, HandlersMayCallAndTurnTheLoop) {
  const tests::PrivateBus bus;
  const auto echo = serveEcho();
  bool nested = false;
  const auto registration = client_.subscribe({.member = "Told"}, [&](BusMessage&) {
    bool answered = false;
    client_.callAsync(
        method("Echo"), [](BusMessage& call) { call.writeDictionary({}); },
        [&](const BusReply&) { answered = true; });
    nested = runUntil([&] { return answered; });
  });
  ASSERT_FALSE(server_.emitSignal(kPath, kName, "Told", {}));
  EXPECT_TRUE(runUntil([&] { return nested; }));
}

TEST_F(SessionBusTest, TellsOfALostConnectionAndAnswersWhatWasAsked) {
  tests::PrivateBus bus;
  const auto echo = serveEcho();
  int lost = 0;
  std::string error;
  ASSERT_FALSE(client_.connect());
  const auto registration = client_.whenLost([&] { ++lost; });
  BusMethod patient = method("Echo");
  patient.timeout = kNoBusTimeout;
  bus.stop();
  client_.callAsync(
      patient, [](BusMessage& call) { call.writeDictionary({}); },
      [&](const BusReply& reply) { error = reply.error ? reply.error->name : "none"; });
  EXPECT_TRUE(runUntil([&] { return lost > 0 && !error.empty(); }));
  EXPECT_NE(error, "none");
  EXPECT_FALSE(client_.isConnected());
}

TEST_F(SessionBusTest, ConnectsAfreshAfterALoss) {
  {
    tests::PrivateBus bus;
    ASSERT_FALSE(client_.connect());
    bus.stop();
    EXPECT_TRUE(runUntil([this] { return !client_.isConnected(); }));
  }
  const tests::PrivateBus next;
  EXPECT_FALSE(client_.connect());
}

TEST_F(SessionBusTest, GivesANameToOneOwnerUnlessItMayBeReplaced) {
  const tests::PrivateBus bus;
  EXPECT_TRUE(server_.requestName("com.example.One", BusNameClaim::exclusive));
  EXPECT_FALSE(client_.requestName("com.example.One", BusNameClaim::exclusive));
  EXPECT_TRUE(server_.requestName("com.example.Two", BusNameClaim::replacing));
  EXPECT_TRUE(client_.requestName("com.example.Two", BusNameClaim::replacing));
  server_.releaseName("com.example.One");
  EXPECT_FALSE(client_.nameHasOwner("com.example.One"));
}

}  // namespace
}  // namespace vornix::contract
