#include "platform/system/HttpClient.h"

#include "tests/fakes/FakeHttpClient.h"

namespace vornix {
namespace {

class ForwardingClient final : public HttpClient {
 public:
  [[nodiscard]] HttpResponse send(const HttpRequest& request) override {
    return fakes::processHttp().send(request);
  }
};

}  // namespace

fakes::FakeHttpClient& fakes::processHttp() {
  static auto& client = *new FakeHttpClient;
  return client;
}

std::unique_ptr<HttpClient> makeHttpClient(std::string certificateAuthorityFile) {
  fakes::processHttp().setCertificateAuthorityFile(std::move(certificateAuthorityFile));
  return std::make_unique<ForwardingClient>();
}

}  // namespace vornix
