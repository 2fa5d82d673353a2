#include "platform/linux/system/CurlHttpClient.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdlib>
#include <memory>
#include <thread>

#include "platform/base/Diagnostics.h"
#include "platform/system/NSURLError.h"
#include "tests/support/HttpsServer.h"

namespace vornix {
namespace {

// A port that takes connections and never says a word.
class SilentPort {
 public:
  enum class Answer { Nothing, Refusal };

  explicit SilentPort(Answer answer = Answer::Nothing)
      : descriptor_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof(address);
    auto* generic = reinterpret_cast<sockaddr*>(&address);
    EXPECT_EQ(bind(descriptor_, generic, length), 0);
    // One that does not listen refuses whoever comes, and nobody else can have it meanwhile.
    if (answer == Answer::Nothing) {
      EXPECT_EQ(listen(descriptor_, 8), 0);
    }
    EXPECT_EQ(getsockname(descriptor_, generic, &length), 0);
    port_ = ntohs(address.sin_port);
  }
  ~SilentPort() { close(descriptor_); }
  SilentPort(const SilentPort&) = delete;
  SilentPort& operator=(const SilentPort&) = delete;

  [[nodiscard]] std::string url() const { return "https://127.0.0.1:" + std::to_string(port_); }
  [[nodiscard]] int waitForConnection() const { return accept(descriptor_, nullptr, nullptr); }

 private:
  int descriptor_;
  std::uint16_t port_ = 0;
};

class CurlHttpClientTest : public testing::Test {
 protected:
  CurlHttpClientTest() {
    for (const char* name : {"https_proxy", "HTTPS_PROXY", "all_proxy", "ALL_PROXY"}) {
      unsetenv(name);
    }
  }

  [[nodiscard]] static std::int64_t codeOf(const HttpResponse& response) {
    return response.error ? response.error->code : 0;
  }
};

TEST_F(CurlHttpClientTest, KeepsOneConnectionForSeveralRequests) {
  const tests::HttpsServer server;
  const auto client = makeHttpClient(server.certificateFile());
  for (const char* path : {"/1", "/2", "/3"}) {
    EXPECT_FALSE(client->send({.url = server.url(path)}).error);
  }
  const auto hits = server.waitForHits(3);
  ASSERT_EQ(hits.size(), 3U);
  EXPECT_EQ(hits[1].connection, hits[0].connection);
  EXPECT_EQ(hits[2].connection, hits[0].connection);
  EXPECT_EQ(hits[0].method, "GET");
}

TEST_F(CurlHttpClientTest, DoesNotTrustAServerThatNoSystemAuthorityVouchesFor) {
  const tests::HttpsServer server;
  const HttpResponse response = makeHttpClient("")->send({.url = server.url("/")});
  EXPECT_EQ(codeOf(response), NSURLErrorServerCertificateUntrusted);
  EXPECT_EQ(response.status, 0);
}

TEST_F(CurlHttpClientTest, TrustsNobodyButTheGivenAuthority) {
  const tests::HttpsServer server;
  const tests::HttpsServer other;
  const auto client = makeHttpClient(other.certificateFile());
  EXPECT_EQ(codeOf(client->send({.url = server.url("/")})), NSURLErrorServerCertificateUntrusted);
  EXPECT_EQ(client->send({.url = other.url("/")}).status, 200);
}

TEST_F(CurlHttpClientTest, TrustsNobodyWhereTheAuthorityFileIsMissing) {
  const tests::HttpsServer server;
  const auto client = makeHttpClient("/nonexistent/authority.pem");
  EXPECT_EQ(codeOf(client->send({.url = server.url("/")})), NSURLErrorServerCertificateUntrusted);
}

TEST_F(CurlHttpClientTest, SaysThatTlsFailedWhereTheServerSpeaksNone) {
  const tests::HttpsServer server({.plain = true});
  const HttpResponse response =
      makeHttpClient(server.certificateFile())->send({.url = server.url("/")});
  EXPECT_EQ(codeOf(response), NSURLErrorSecureConnectionFailed);
}

TEST_F(CurlHttpClientTest, SaysThatNobodyListens) {
  const SilentPort port(SilentPort::Answer::Refusal);
  EXPECT_EQ(codeOf(makeHttpClient("")->send({.url = port.url()})), NSURLErrorCannotConnectToHost);
}

TEST_F(CurlHttpClientTest, SaysThatThereIsNoSuchHost) {
  // A label of 64 letters: no resolver has to be asked.
  const std::string url = "https://" + std::string(64, 'a') + ".invalid/";
  EXPECT_EQ(codeOf(makeHttpClient("")->send({.url = url})), NSURLErrorCannotFindHost);
}

TEST_F(CurlHttpClientTest, GivesUpAServerThatNeverAnswers) {
  const SilentPort port;
  EXPECT_EQ(codeOf(makeHttpClient("")->send({.url = port.url(), .timeout = 0.2})),
            NSURLErrorTimedOut);
}

TEST_F(CurlHttpClientTest, TimesTheWholeExchangeAlsoWhileBytesArrive) {
  const tests::HttpsServer server;
  const auto client = makeHttpClient(server.certificateFile());
  // Not a byte later than the limit, though each second brings one.
  EXPECT_EQ(codeOf(client->send({.url = server.url("/slow"), .timeout = 2.5})), NSURLErrorTimedOut);
}

TEST_F(CurlHttpClientTest, EndsAnAnswerThatIsTooLarge) {
  const tests::HttpsServer server;
  const auto client = makeHttpClient(server.certificateFile());
  const HttpResponse response = client->send({.url = server.url("/big")});
  EXPECT_EQ(response.status, 200);
  EXPECT_EQ(codeOf(response), NSURLErrorDataLengthExceedsMaximum);
  EXPECT_EQ(client->send({.url = server.url("/next")}).status, 200);
}

TEST_F(CurlHttpClientTest, FollowsRedirectsWithAGet) {
  const tests::HttpsServer server;
  const auto client = makeHttpClient(server.certificateFile());
  EXPECT_EQ(
      client->send({.url = server.url("/redirect"), .headers = {{"User-Agent", "Vornix"}}}).status,
      200);
  const auto hits = server.waitForHits(2);
  ASSERT_EQ(hits.size(), 2U);
  EXPECT_EQ(hits[1].uri, "/arrived");
  EXPECT_EQ(hits[1].method, "GET");
  EXPECT_EQ(hits[1].userAgent, "Vornix");
}

TEST_F(CurlHttpClientTest, FollowsNoRedirectOutOfHttps) {
  const tests::HttpsServer server;
  const auto client = makeHttpClient(server.certificateFile());
  EXPECT_EQ(codeOf(client->send({.url = server.url("/redirect-plain")})), NSURLErrorUnsupportedURL);
}

TEST_F(CurlHttpClientTest, FollowsSixteenRedirectsAtMost) {
  const tests::HttpsServer server;
  const auto client = makeHttpClient(server.certificateFile());
  EXPECT_EQ(codeOf(client->send({.url = server.url("/redirect-for-ever")})),
            NSURLErrorHTTPTooManyRedirects);
  EXPECT_EQ(server.waitForHits(17).size(), 17U);
}

TEST_F(CurlHttpClientTest, KeepsNoCookies) {
  const tests::HttpsServer server;
  const auto client = makeHttpClient(server.certificateFile());
  (void)client->send({.url = server.url("/cookie")});
  (void)client->send({.url = server.url("/after")});
  const auto hits = server.waitForHits(2);
  ASSERT_EQ(hits.size(), 2U);
  EXPECT_EQ(hits[1].cookie, "");
}

TEST_F(CurlHttpClientTest, AsksCachesToStandAside) {
  const tests::HttpsServer server;
  const auto client = makeHttpClient(server.certificateFile());
  (void)client->send({.url = server.url("/1")});
  (void)client->send({.url = server.url("/2"), .headers = {{"cache-control", "max-age=0"}}});
  const auto hits = server.waitForHits(2);
  ASSERT_EQ(hits.size(), 2U);
  EXPECT_EQ(hits[0].cacheControl, "no-cache");
  EXPECT_EQ(hits[1].cacheControl, "max-age=0");
}

TEST_F(CurlHttpClientTest, LetsNoHeaderValueBeginAnotherHeader) {
  const tests::HttpsServer server;
  const auto client = makeHttpClient(server.certificateFile());
  (void)client->send({.url = server.url("/"), .headers = {{"User-Agent", "a\r\nCookie: b=1"}}});
  const auto hits = server.waitForHits(1);
  ASSERT_EQ(hits.size(), 1U);
  EXPECT_EQ(hits[0].userAgent, "a  Cookie: b=1");
  EXPECT_EQ(hits[0].cookie, "");
}

TEST_F(CurlHttpClientTest, LeavesOutAndReportsAHeaderWithoutAProperName) {
  std::string said;
  setDiagnosticReceiver([&said](std::string_view line) { said += line; });
  const tests::HttpsServer server;
  const auto client = makeHttpClient(server.certificateFile());
  EXPECT_EQ(client->send({.url = server.url("/"), .headers = {{"Bad Name", "x"}}}).status, 200);
  setDiagnosticReceiver({});
  EXPECT_NE(said.find("\"Bad Name\""), std::string::npos) << said;
}

TEST_F(CurlHttpClientTest, GoesThroughTheProxyOfTheEnvironment) {
  const tests::HttpsServer server;
  const SilentPort proxy(SilentPort::Answer::Refusal);
  const std::string address = proxy.url().substr(std::string("https://").size());
  setenv("https_proxy", ("http://" + address).c_str(), 1);
  const auto client = makeHttpClient(server.certificateFile());
  EXPECT_EQ(codeOf(client->send({.url = server.url("/")})), NSURLErrorCannotConnectToHost);
  unsetenv("https_proxy");
  EXPECT_TRUE(server.hits().empty());
}

TEST_F(CurlHttpClientTest, OpensAFreshConnectionWhereTheServerHasGone) {
  auto server = std::make_unique<tests::HttpsServer>();
  const std::string first = server->url("/");
  const auto client = makeHttpClient(server->certificateFile());
  EXPECT_EQ(client->send({.url = first}).status, 200);
  server.reset();
  EXPECT_EQ(codeOf(client->send({.url = first})), NSURLErrorCannotConnectToHost);
}

TEST_F(CurlHttpClientTest, AnswersAnErrorAndReportsWhereTheLibraryIsMissing) {
  std::string said;
  setDiagnosticReceiver([&said](std::string_view line) { said += line; });
  const auto client = makeCurlHttpClient("libvornix-none.so.4", "");
  const HttpResponse response = client->send({.url = "https://127.0.0.1/"});
  setDiagnosticReceiver({});
  EXPECT_EQ(codeOf(response), NSURLErrorUnknown);
  EXPECT_EQ(response.status, 0);
  EXPECT_NE(said.find("libvornix-none.so.4"), std::string::npos) << said;
}

TEST_F(CurlHttpClientTest, AnswersAnErrorWhereTheLibraryIsAnother) {
  setDiagnosticReceiver([](std::string_view) {});
  const auto client = makeCurlHttpClient("libm.so.6", "");
  EXPECT_EQ(codeOf(client->send({.url = "https://127.0.0.1/"})), NSURLErrorUnknown);
  setDiagnosticReceiver({});
}

using CurlHttpClientDeathTest = CurlHttpClientTest;

TEST_F(CurlHttpClientDeathTest, LetsTheProcessEndInTheMiddleOfARequest) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(
      {
        const SilentPort port;
        const auto client = makeHttpClient("");
        std::thread sender([&] { (void)client->send({.url = port.url()}); });
        (void)port.waitForConnection();
        _exit(0);
      },
      testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace vornix
