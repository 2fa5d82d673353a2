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
  // Only "https:" is spoken, also where the server redirects.
  std::string url{};
  // Sent beside the client's own; a header of the same name replaces it.
  std::vector<std::pair<std::string, std::string>> headers{};
  // Seconds for the whole exchange; 60 where the value is no positive number.
  double timeout = 60.0;
};

struct HttpResponse {
  // The server's status; an error status is a response, not an error. 0 when there was none.
  int status = 0;
  // `NSURLErrorDomain` (NSURLError.h): no text of a URL -1000 and another scheme -1002, both
  // without any traffic; timed out -1001, host not found -1003, no connection -1004, connection
  // lost -1005, over 16 redirects -1007, body over 1 MiB -1103, TLS failed -1200, server not
  // trusted -1202.
  std::optional<NSError> error{};
};

// Sends requests over HTTPS. The response's body is discarded, and so are cookies. Any thread, one
// request at a time: a second caller waits. Connections are kept and reused. The process may end by
// `_exit` in the middle of a request; otherwise a client outlives its requests.
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
