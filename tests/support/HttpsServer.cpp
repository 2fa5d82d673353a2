#include "tests/support/HttpsServer.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/inotify.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace vornix::tests {
namespace {

class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {
    if (number < 0) {
      throw std::runtime_error("no descriptor");
    }
  }
  ~Descriptor() { close(number_); }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  [[nodiscard]] int get() const { return number_; }

 private:
  int number_;
};

// Listens from now on, so nobody waits for the server's start and nobody else takes the port.
std::uint16_t listenAtAnyPort(int descriptor) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t length = sizeof(address);
  auto* generic = reinterpret_cast<sockaddr*>(&address);
  if (bind(descriptor, generic, length) != 0 || listen(descriptor, 64) != 0 ||
      getsockname(descriptor, generic, &length) != 0) {
    throw std::runtime_error("cannot listen on the loopback");
  }
  return ntohs(address.sin_port);
}

void makeCertificate(const ScratchFolder& folder) {
  const Descriptor log(
      open(folder.path("openssl.log").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, S_IRUSR | S_IWUSR));
  ChildProcess openssl({"openssl", "req", "-x509", "-newkey", "ec", "-pkeyopt",
                        "ec_paramgen_curve:prime256v1", "-nodes", "-days", "2", "-batch", "-subj",
                        "/CN=127.0.0.1", "-addext", "subjectAltName=IP:127.0.0.1,DNS:localhost",
                        "-keyout", folder.path("key.pem"), "-out", folder.path("certificate.pem")},
                       {{.here = log.get(), .there = STDERR_FILENO}});
  if (openssl.wait() != 0) {
    throw std::runtime_error("openssl made no certificate");
  }
}

std::string locations(const HttpsServer::Options& options, const std::string& origin) {
  if (options.slow) {
    return "location / { limit_rate 1; try_files /big =404; }\n";
  }
  return "location / { return " + std::to_string(options.status) +
         " \"noted\"; }\n"
         "location = /error { return 500; }\n"
         "location = /big { try_files /big =404; }\n"
         "location = /slow { limit_rate 1; try_files /big =404; }\n"
         "location = /redirect { return 302 " +
         origin +
         "/arrived; }\n"
         "location = /redirect-plain { return 302 http://127.0.0.1/; }\n"
         "location = /redirect-for-ever { return 302 " +
         origin +
         "/redirect-for-ever; }\n"
         "location = /cookie { add_header Set-Cookie \"crumb=1; Path=/; Max-Age=3600\"; "
         "return 200; }\n";
}

std::string configuration(const HttpsServer::Options& options, const std::string& host) {
  // Its worker would leave root's account and then could not enter the folder.
  std::string text = geteuid() == 0 ? "user root root;\n" : "";
  text +=
      "daemon off;\nworker_processes 1;\npid nginx.pid;\nerror_log error.log;\n"
      "events { worker_connections 64; }\n"
      "http {\n"
      "client_body_temp_path body;\nproxy_temp_path proxy;\nfastcgi_temp_path fastcgi;\n"
      "uwsgi_temp_path uwsgi;\nscgi_temp_path scgi;\n"
      "keepalive_timeout 600s;\nkeepalive_requests 10000;\nlarge_client_header_buffers 4 64k;\n"
      "log_format hits escape=none '$connection\\t$status\\t$request_method\\t$request_uri\\t"
      "$http_cookie\\t$http_cache_control\\t$http_user_agent';\n"
      "access_log access.log hits;\n";
  text += "server {\nlisten " + host + (options.plain ? ";\n" : " ssl;\n");
  if (!options.plain) {
    text += "ssl_certificate certificate.pem;\nssl_certificate_key key.pem;\n";
  }
  return text + "root files;\n" + locations(options, "https://" + host) + "}\n}\n";
}

std::vector<std::string> fieldsOf(const std::string& line) {
  std::vector<std::string> fields;
  std::istringstream stream(line);
  std::string field;
  while (std::getline(stream, field, '\t')) {
    fields.push_back(field);
  }
  fields.resize(7);
  return fields;
}

HttpsServer::Hit hitOf(const std::string& line) {
  const std::vector<std::string> fields = fieldsOf(line);
  return {.connection = std::stoull(fields[0]),
          .status = std::stoi(fields[1]),
          .method = fields[2],
          .uri = fields[3],
          .cookie = fields[4],
          .cacheControl = fields[5],
          .userAgent = fields[6]};
}

void drain(int descriptor) {
  std::array<char, 4096> events{};
  while (read(descriptor, events.data(), events.size()) > 0) {
  }
}

}  // namespace

HttpsServer::HttpsServer() : HttpsServer(Options{}) {}

HttpsServer::HttpsServer(Options options) {
  const Descriptor listener(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
  port_ = listenAtAnyPort(listener.get());
  makeCertificate(folder_);
  folder_.write("files/big", std::string((std::size_t{1} << 20U) + 4096, 'x'));
  folder_.write("access.log", "");
  folder_.write("nginx.conf", configuration(options, host()));
  // The server takes over a listening socket that this variable names.
  constexpr int inherited = 33;
  server_ = std::make_unique<ChildProcess>(
      std::vector<std::string>{"nginx", "-p", folder_.path() + "/", "-c", "nginx.conf", "-e",
                               folder_.path("error.log")},
      std::vector<ChildProcess::Descriptor>{{.here = listener.get(), .there = inherited}},
      std::vector<std::string>{"NGINX=" + std::to_string(inherited) + ";"});
}

std::string HttpsServer::host() const {
  return "127.0.0.1:" + std::to_string(port_);
}

std::string HttpsServer::url(std::string_view path) const {
  return "https://" + host() + std::string(path);
}

std::vector<HttpsServer::Hit> HttpsServer::hits() const {
  std::ifstream stream(folder_.path("access.log"));
  std::vector<Hit> hits;
  std::string line;
  // A line that is still being written has no end.
  while (std::getline(stream, line) && !stream.eof()) {
    hits.push_back(hitOf(line));
  }
  return hits;
}

std::vector<HttpsServer::Hit> HttpsServer::waitForHits(std::size_t count,
                                                       std::chrono::seconds deadline) const {
  const Descriptor watch(inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
  if (inotify_add_watch(watch.get(), folder_.path("access.log").c_str(), IN_MODIFY) < 0) {
    throw std::runtime_error("cannot watch the access log");
  }
  const auto end = std::chrono::steady_clock::now() + deadline;
  std::vector<Hit> seen = hits();
  while (seen.size() < count && std::chrono::steady_clock::now() < end) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
        end - std::chrono::steady_clock::now());
    pollfd entry{.fd = watch.get(), .events = POLLIN, .revents = 0};
    poll(&entry, 1, static_cast<int>(left.count()));
    drain(watch.get());
    seen = hits();
  }
  return seen;
}

}  // namespace vornix::tests
