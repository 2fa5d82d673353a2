#include "tests/fakes/FakeHttpClient.h"

#include <utility>

#include "platform/base/Text.h"
#include "platform/system/NSURLError.h"

namespace vornix::fakes {
namespace {

std::optional<NSError> refusal(const HttpRequest& request) {
  if (!isUrlText(request.url)) {
    return urlError(NSURLErrorBadURL, "bad URL");
  }
  if (!text::asciiLowercase(request.url).starts_with("https://")) {
    return urlError(NSURLErrorUnsupportedURL, "unsupported URL");
  }
  return std::nullopt;
}

}  // namespace

HttpResponse FakeHttpClient::send(const HttpRequest& request) {
  if (auto error = refusal(request)) {
    return {.error = std::move(error)};
  }
  const std::lock_guard turn(turn_);
  {
    const std::lock_guard lock(mutex_);
    requests_.push_back(request);
  }
  changed_.notify_all();
  HttpResponse response = respond();
  changed_.notify_all();
  return response;
}

HttpResponse FakeHttpClient::respond() {
  std::unique_lock lock(mutex_);
  const bool released =
      changed_.wait_for(lock, deadline_, [this] { return !blocking_ || permits_ > 0; });
  ++answers_;
  if (!released) {
    return {.error = urlError(NSURLErrorTimedOut, "never released")};
  }
  permits_ -= blocking_ ? 1U : 0U;
  if (script_.empty()) {
    return {.status = 200};
  }
  HttpResponse response = std::move(script_.front());
  script_.pop_front();
  return response;
}

void FakeHttpClient::answer(HttpResponse response) {
  const std::lock_guard lock(mutex_);
  script_.push_back(std::move(response));
}

void FakeHttpClient::block() {
  const std::lock_guard lock(mutex_);
  blocking_ = true;
  permits_ = 0;
}

void FakeHttpClient::release(std::size_t count) {
  {
    const std::lock_guard lock(mutex_);
    permits_ += count;
  }
  changed_.notify_all();
}

void FakeHttpClient::unblock() {
  {
    const std::lock_guard lock(mutex_);
    blocking_ = false;
  }
  changed_.notify_all();
}

std::vector<HttpRequest> FakeHttpClient::requests() const {
  const std::lock_guard lock(mutex_);
  return requests_;
}

bool FakeHttpClient::waitForRequests(std::size_t count, std::chrono::seconds deadline) {
  std::unique_lock lock(mutex_);
  return changed_.wait_for(lock, deadline, [&] { return requests_.size() >= count; });
}

bool FakeHttpClient::waitForAnswers(std::size_t count, std::chrono::seconds deadline) {
  std::unique_lock lock(mutex_);
  return changed_.wait_for(lock, deadline, [&] { return answers_ >= count; });
}

std::size_t FakeHttpClient::answers() const {
  const std::lock_guard lock(mutex_);
  return answers_;
}

void FakeHttpClient::setCertificateAuthorityFile(std::string file) {
  const std::lock_guard lock(mutex_);
  certificateAuthorityFile_ = std::move(file);
}

std::string FakeHttpClient::certificateAuthorityFile() const {
  const std::lock_guard lock(mutex_);
  return certificateAuthorityFile_;
}

}  // namespace vornix::fakes
