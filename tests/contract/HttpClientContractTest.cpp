#include <gtest/gtest.h>

#include <memory>
#include <thread>

#include "platform/system/HttpClient.h"
#include "platform/system/NSURLError.h"
#include "tests/fakes/FakeHttpClient.h"
#include "tests/support/HttpsServer.h"

namespace vornix {
namespace {

struct Arrival {
  std::string uri{};
  std::string userAgent{};
};

// A client and the server that it talks to.
class World {
 public:
  virtual ~World() = default;
  virtual HttpClient& client() = 0;
  virtual std::string origin() = 0;
  // The next request is answered with 500; its path is "/error".
  virtual void prepareError() = 0;
  // What arrived, once so much has.
  virtual std::vector<Arrival> arrivals(std::size_t count) = 0;
};

class FakeWorld final : public World {
 public:
  HttpClient& client() override { return client_; }
  std::string origin() override { return "https://collect.example"; }
  void prepareError() override { client_.answer({.status = 500}); }
  std::vector<Arrival> arrivals(std::size_t count) override {
    EXPECT_TRUE(client_.waitForRequests(count));
    std::vector<Arrival> result;
    for (const HttpRequest& request : client_.requests()) {
      Arrival arrival{.uri = request.url.substr(origin().size())};
      for (const auto& [name, value] : request.headers) {
        arrival.userAgent = name == "User-Agent" ? value : arrival.userAgent;
      }
      result.push_back(arrival);
    }
    return result;
  }

 private:
  fakes::FakeHttpClient client_;
};

class LinuxWorld final : public World {
 public:
  HttpClient& client() override { return *client_; }
  std::string origin() override { return server_.url(""); }
  void prepareError() override {}
  std::vector<Arrival> arrivals(std::size_t count) override {
    std::vector<Arrival> result;
    for (const tests::HttpsServer::Hit& hit : server_.waitForHits(count)) {
      result.push_back({.uri = hit.uri, .userAgent = hit.userAgent});
    }
    return result;
  }

 private:
  tests::HttpsServer server_;
  std::unique_ptr<HttpClient> client_ = makeHttpClient(server_.certificateFile());
};

template <typename W>
class HttpClientContract : public testing::Test {
 protected:
  [[nodiscard]] HttpResponse get(const std::string& path) {
    return world_.client().send({.url = world_.origin() + path});
  }

  W world_;
};

using Implementations = testing::Types<FakeWorld, LinuxWorld>;
TYPED_TEST_SUITE(HttpClientContract, Implementations);

TYPED_TEST(HttpClientContract, AnswersTheServersStatus) {
  const HttpResponse response = this->get("/collect");
  EXPECT_EQ(response.status, 200);
  EXPECT_FALSE(response.error) << response.error->description();
}

TYPED_TEST(HttpClientContract, TakesAnErrorStatusForAResponse) {
  this->world_.prepareError();
  const HttpResponse response = this->get("/error");
  EXPECT_EQ(response.status, 500);
  EXPECT_FALSE(response.error) << response.error->description();
}

TYPED_TEST(HttpClientContract, SendsPathAndHeadersAsTheyStand) {
  const HttpResponse response = this->world_.client().send(
      {.url = this->world_.origin() + "/collect?v=1&dt=a%20b%C3%A4&ul=en",
       .headers = {{"User-Agent", "Vornix/3.4.0-key \"quoted\" (Linux; 6_1_90)"}}});
  EXPECT_EQ(response.status, 200);
  const auto arrivals = this->world_.arrivals(1);
  ASSERT_EQ(arrivals.size(), 1U);
  EXPECT_EQ(arrivals[0].uri, "/collect?v=1&dt=a%20b%C3%A4&ul=en");
  EXPECT_EQ(arrivals[0].userAgent, "Vornix/3.4.0-key \"quoted\" (Linux; 6_1_90)");
}

TYPED_TEST(HttpClientContract, RefusesABadUrlWithoutTraffic) {
  for (const char* path : {"/a b", "/\xc3\xa4", "/%", "/#a#b", "/<a>"}) {
    const HttpResponse response = this->get(path);
    ASSERT_TRUE(response.error) << path;
    EXPECT_EQ(response.error->domain, NSURLErrorDomain);
    EXPECT_EQ(response.error->code, NSURLErrorBadURL) << path;
    EXPECT_EQ(response.status, 0);
  }
  (void)this->get("/good");
  const auto arrivals = this->world_.arrivals(1);
  ASSERT_EQ(arrivals.size(), 1U);
  EXPECT_EQ(arrivals[0].uri, "/good");
}

TYPED_TEST(HttpClientContract, RefusesTheEmptyUrl) {
  const HttpResponse response = this->world_.client().send({});
  ASSERT_TRUE(response.error);
  EXPECT_EQ(response.error->code, NSURLErrorBadURL);
}

TYPED_TEST(HttpClientContract, SpeaksHttpsOnly) {
  for (const char* url : {"http://127.0.0.1/", "file:///etc/hostname", "ftp://127.0.0.1/", "a"}) {
    const HttpResponse response = this->world_.client().send({.url = url});
    ASSERT_TRUE(response.error) << url;
    EXPECT_EQ(response.error->code, NSURLErrorUnsupportedURL) << url;
  }
}

TYPED_TEST(HttpClientContract, KeepsTheOrderOfRequests) {
  for (const char* path : {"/1", "/2", "/3"}) {
    (void)this->get(path);
  }
  const auto arrivals = this->world_.arrivals(3);
  ASSERT_EQ(arrivals.size(), 3U);
  EXPECT_EQ(arrivals[0].uri, "/1");
  EXPECT_EQ(arrivals[1].uri, "/2");
  EXPECT_EQ(arrivals[2].uri, "/3");
}

TYPED_TEST(HttpClientContract, ServesSeveralThreads) {
  std::vector<std::thread> threads;
  for (int index = 0; index < 4; ++index) {
    threads.emplace_back([this] { EXPECT_EQ(this->get("/collect").status, 200); });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(this->world_.arrivals(4).size(), 4U);
}

}  // namespace
}  // namespace vornix
