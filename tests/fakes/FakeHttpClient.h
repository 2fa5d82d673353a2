#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <mutex>
#include <string>
#include <vector>

#include "platform/system/HttpClient.h"

namespace vornix::fakes {

// A server in memory: records what is sent, answers by script, and holds answers back on request.
// Refuses bad URLs as the real client does, without recording them. Any thread.
class FakeHttpClient final : public HttpClient {
 public:
  [[nodiscard]] HttpResponse send(const HttpRequest& request) override;

  // What the next request without an answer gets; without script, status 200.
  void answer(HttpResponse response);
  // From now on requests wait for `release`, or fail with -1001 after a deadline that no healthy
  // test reaches.
  void block();
  // Lets so many waiting or future requests through.
  void release(std::size_t count = 1);
  // Lets all through, and nothing waits any more.
  void unblock();

  // The requests that reached the server, in order.
  [[nodiscard]] std::vector<HttpRequest> requests() const;
  // Waits until so many have begun; false after the deadline.
  [[nodiscard]] bool waitForRequests(std::size_t count, std::chrono::seconds deadline = deadline_);
  // Waits until so many have been answered; false after the deadline.
  [[nodiscard]] bool waitForAnswers(std::size_t count, std::chrono::seconds deadline = deadline_);
  // Answers given so far.
  [[nodiscard]] std::size_t answers() const;

  // The file that `makeHttpClient` was last given on the fake platform.
  void setCertificateAuthorityFile(std::string file);
  [[nodiscard]] std::string certificateAuthorityFile() const;

 private:
  static constexpr std::chrono::seconds deadline_{60};

  HttpResponse respond();

  std::mutex turn_;
  mutable std::mutex mutex_;
  std::condition_variable changed_;
  std::vector<HttpRequest> requests_;
  std::deque<HttpResponse> script_;
  std::size_t answers_ = 0;
  std::size_t permits_ = 0;
  bool blocking_ = false;
  std::string certificateAuthorityFile_;
};

// The one behind every client that `makeHttpClient` makes on the fake platform.
FakeHttpClient& processHttp();

}  // namespace vornix::fakes
