#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/ChildProcess.h"
#include "tests/support/ScratchFolder.h"

namespace vornix::tests {

// A web server on the loopback at a free port with a certificate of its own for 127.0.0.1 and
// localhost. Answers everything with `status`, besides these paths:
//   /error             500, and closes the connection
//   /big               more than 1 MiB
//   /slow              a byte a second
//   /redirect          302 to /arrived
//   /redirect-plain    302 to an "http:" URL
//   /redirect-for-ever 302 to itself
//   /cookie            200, sets a cookie
// Connections are otherwise kept open. Listens from the constructor's end to the destructor.
class HttpsServer {
 public:
  struct Options {
    int status = 200;
    // Answers nothing in less than many minutes, whatever the path.
    bool slow = false;
    // Speaks plain HTTP on the port instead, so that no TLS can be agreed on.
    bool plain = false;
  };
  // One request, as the server saw it, in the order in which they ended.
  struct Hit {
    // Equal for requests that came over one connection.
    std::uint64_t connection = 0;
    int status = 0;
    std::string method;
    // Path and query as sent.
    std::string uri;
    std::string cookie;
    std::string cacheControl;
    std::string userAgent;
  };

  HttpsServer();
  explicit HttpsServer(Options options);

  [[nodiscard]] std::uint16_t port() const { return port_; }
  // "127.0.0.1:PORT".
  [[nodiscard]] std::string host() const;
  // `path` begins with a slash.
  [[nodiscard]] std::string url(std::string_view path) const;
  // Trusting this file is trusting the server.
  [[nodiscard]] std::string certificateFile() const { return folder_.path("certificate.pem"); }

  // The requests that have ended so far.
  [[nodiscard]] std::vector<Hit> hits() const;
  // Waits until there are so many; answers what there is then or at the deadline.
  [[nodiscard]] std::vector<Hit> waitForHits(
      std::size_t count, std::chrono::seconds deadline = std::chrono::seconds(60)) const;

 private:
  ScratchFolder folder_;
  std::uint16_t port_ = 0;
  std::unique_ptr<ChildProcess> server_;
};

}  // namespace vornix::tests
