#pragma once

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/base/NSError.h"

namespace vornix {

// One request; always a GET that ignores caches.
struct HttpRequest {
  std::string url;
  std::vector<std::pair<std::string, std::string>> headers;
  // Seconds for the whole exchange.
  double timeout = 60.0;
};

struct HttpResponse {
  // The server's status; an error status is a response, not an error. 0 when there was none.
  int status = 0;
  std::optional<NSError> error;
};

// Sends requests over HTTPS. The response's body is discarded. Any thread, one request at a time:
// a second caller waits. Connections are kept and reused.
class HttpClient {
 public:
  virtual ~HttpClient() = default;

  // Blocks until the exchange is over or has failed. Never throws.
  [[nodiscard]] virtual HttpResponse send(const HttpRequest& request) = 0;
};

// `certificateAuthorityFile`: trusted instead of the system's authorities; empty for the system's.
// The client library is loaded at the first request.
[[nodiscard]] std::unique_ptr<HttpClient> makeHttpClient(std::string certificateAuthorityFile);

}  // namespace vornix
