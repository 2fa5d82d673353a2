#include <fcntl.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <csignal>
#include <cstdlib>
#include <memory>
#include <vector>

#include "platform/system/HttpClient.h"
#include "platform/system/NSURLError.h"
#include "tests/support/HttpsServer.h"

namespace vornix {
namespace {

// The sockets by which this process talks to servers.
std::vector<int> openConnections() {
  std::vector<int> connections;
  for (int descriptor = 3; descriptor < 256; ++descriptor) {
    sockaddr_in peer{};
    socklen_t length = sizeof(peer);
    auto* generic = reinterpret_cast<sockaddr*>(&peer);
    if (getpeername(descriptor, generic, &length) == 0 && peer.sin_family == AF_INET) {
      connections.push_back(descriptor);
    }
  }
  return connections;
}

// A client with a connection kept open, in a program that leaves signals as they were.
class CurlConnectionTest : public testing::Test {
 protected:
  CurlConnectionTest() {
    for (const char* name : {"https_proxy", "HTTPS_PROXY", "all_proxy", "ALL_PROXY"}) {
      unsetenv(name);
    }
    std::signal(SIGPIPE, SIG_DFL);
    EXPECT_EQ(client_->send({.url = server_.url("/")}).status, 200);
    EXPECT_EQ(openConnections().size(), 1U);
  }

  // What is written to the connection from now on fails, as where the peer has gone.
  static void breakConnections() {
    for (const int connection : openConnections()) EXPECT_EQ(shutdown(connection, SHUT_WR), 0);
  }

  const tests::HttpsServer server_;
  std::unique_ptr<HttpClient> client_ = makeHttpClient(server_.certificateFile());
};

TEST_F(CurlConnectionTest, IsNotHandedToProgramsThatAreStarted) {
  for (const int connection : openConnections()) {
    EXPECT_NE(fcntl(connection, F_GETFD) & FD_CLOEXEC, 0) << connection;
  }
}

TEST_F(CurlConnectionTest, IsClosedWithTheClient) {
  client_.reset();
  EXPECT_TRUE(openConnections().empty());
}

TEST_F(CurlConnectionTest, EndsNoProcessWhereItBreaksUnderARequest) {
  breakConnections();
  const HttpResponse response = client_->send({.url = server_.url("/")});
  // The client may notice in time and open another one.
  EXPECT_TRUE(response.status == 200 ||
              (response.error && response.error->code == NSURLErrorNetworkConnectionLost));
  EXPECT_EQ(client_->send({.url = server_.url("/")}).status, 200);
}

TEST_F(CurlConnectionTest, EndsNoProcessWhereItIsBrokenWhenTheClientEnds) {
  breakConnections();
  client_.reset();
  EXPECT_TRUE(openConnections().empty());
}

}  // namespace
}  // namespace vornix
