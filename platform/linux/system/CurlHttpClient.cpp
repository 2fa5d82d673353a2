#include "platform/linux/system/CurlHttpClient.h"

#include <sys/socket.h>

#include <algorithm>
#include <exception>
#include <initializer_list>
#include <string_view>
#include <utility>

#include "platform/base/Diagnostics.h"
#include "platform/base/Mutex.h"
#include "platform/base/Text.h"
#include "platform/linux/system/CurlLibrary.h"
#include "platform/system/NSURLError.h"

namespace vornix {
namespace {

constexpr std::size_t largestBody = std::size_t{1} << 20U;
constexpr long mostRedirects = 16;
// Found by hash, so only the authorities that are asked for are read.
constexpr const char* systemAuthorities = "/etc/ssl/certs";

HttpResponse failed(std::int64_t code, std::string_view description) {
  return {.error = urlError(code, description)};
}

std::int64_t platformCode(CURLcode code) {
  switch (code) {
    case CURLE_URL_MALFORMAT:
      return NSURLErrorBadURL;
    case CURLE_UNSUPPORTED_PROTOCOL:
      return NSURLErrorUnsupportedURL;
    case CURLE_OPERATION_TIMEDOUT:
      return NSURLErrorTimedOut;
    case CURLE_COULDNT_RESOLVE_HOST:
    case CURLE_COULDNT_RESOLVE_PROXY:
      return NSURLErrorCannotFindHost;
    case CURLE_COULDNT_CONNECT:
      return NSURLErrorCannotConnectToHost;
    case CURLE_GOT_NOTHING:
    case CURLE_SEND_ERROR:
    case CURLE_RECV_ERROR:
    case CURLE_PARTIAL_FILE:
      return NSURLErrorNetworkConnectionLost;
    case CURLE_TOO_MANY_REDIRECTS:
      return NSURLErrorHTTPTooManyRedirects;
    case CURLE_WEIRD_SERVER_REPLY:
      return NSURLErrorBadServerResponse;
    case CURLE_WRITE_ERROR:
      return NSURLErrorDataLengthExceedsMaximum;
    case CURLE_PEER_FAILED_VERIFICATION:
    case CURLE_SSL_CACERT_BADFILE:
    case CURLE_SSL_ISSUER_ERROR:
      return NSURLErrorServerCertificateUntrusted;
    case CURLE_SSL_CONNECT_ERROR:
    case CURLE_SSL_CIPHER:
    case CURLE_USE_SSL_FAILED:
      return NSURLErrorSecureConnectionFailed;
    default:
      return NSURLErrorUnknown;
  }
}

CURLcode firstFailure(std::initializer_list<CURLcode> codes) {
  const auto* failure = std::ranges::find_if(codes, [](CURLcode code) { return code != CURLE_OK; });
  return failure == codes.end() ? CURLE_OK : *failure;
}

// Too much for a request's answer ends the exchange.
std::size_t discardBody(char*, std::size_t, std::size_t count, void* received) {
  auto& total = *static_cast<std::size_t*>(received);
  total += count;
  return total <= largestBody ? count : 0;
}

// The library's own sockets would be inherited by the programs that this process starts.
curl_socket_t openPrivateSocket(void*, curlsocktype, curl_sockaddr* address) {
  return socket(address->family, address->socktype | SOCK_CLOEXEC, address->protocol);
}

bool isHeaderName(std::string_view name) {
  constexpr std::string_view marks = "!#$%&'*+-.^_`|~";
  return !name.empty() && std::ranges::all_of(name, [marks](char each) {
    return text::isAsciiLetterOrDigit(each) || marks.find(each) != marks.npos;
  });
}

// A line break in a value would begin another header.
std::string headerLine(std::string_view name, std::string_view value) {
  std::string line(text::trim(value));
  std::ranges::replace_if(
      line, [](char each) { return (each >= '\0' && each < ' ') || each == '\x7f'; }, ' ');
  // The library's way to say that a header is there and empty.
  return line.empty() ? std::string(name) + ";" : std::string(name) + ": " + line;
}

class HeaderList {
 public:
  HeaderList(const CurlLibrary& curl, const HttpRequest& request) : curl_(curl) {
    if (std::ranges::none_of(request.headers, [](const auto& header) {
          return text::asciiEqualIgnoringCase(header.first, "Cache-Control");
        })) {
      append("Cache-Control: no-cache");
    }
    for (const auto& [name, value] : request.headers) {
      if (isHeaderName(name)) {
        append(headerLine(name, value));
      } else {
        reportDiagnostic("HTTPS client: left out a header whose name is no name: \"" + name + "\"");
      }
    }
  }
  ~HeaderList() { curl_.freeList(list_); }
  HeaderList(const HeaderList&) = delete;
  HeaderList& operator=(const HeaderList&) = delete;

  [[nodiscard]] curl_slist* get() const { return list_; }

 private:
  void append(const std::string& line) {
    curl_slist* longer = curl_.appendToList(list_, line.c_str());
    list_ = longer != nullptr ? longer : list_;
  }

  const CurlLibrary& curl_;
  curl_slist* list_ = nullptr;
};

long milliseconds(double seconds) {
  constexpr double standard = 60.0;
  constexpr double longest = 86400.0;
  const double bounded = seconds > 0 ? std::min(seconds, longest) : standard;
  return std::max(1L, static_cast<long>(bounded * 1000));
}

class CurlHttpClient final : public HttpClient {
 public:
  CurlHttpClient(std::string soname, std::string authorityFile)
      : soname_(std::move(soname)), authorityFile_(std::move(authorityFile)) {}
  ~CurlHttpClient() override {
    if (handle_ != nullptr) {
      curl_->cleanup(handle_);
    }
  }
  CurlHttpClient(const CurlHttpClient&) = delete;
  CurlHttpClient& operator=(const CurlHttpClient&) = delete;

  [[nodiscard]] HttpResponse send(const HttpRequest& request) override;

 private:
  [[nodiscard]] bool prepare() VORNIX_REQUIRES(mutex_);
  [[nodiscard]] HttpResponse exchange(const HttpRequest& request) VORNIX_REQUIRES(mutex_);
  [[nodiscard]] CURLcode configure(const HttpRequest& request, const HeaderList& headers)
      VORNIX_REQUIRES(mutex_);
  [[nodiscard]] CURLcode configureTrust() VORNIX_REQUIRES(mutex_);
  template <typename... Values>
  [[nodiscard]] CURLcode set(CURLoption option, Values... values) VORNIX_REQUIRES(mutex_) {
    return curl_->setOption(handle_, option, values...);
  }

  const std::string soname_;
  const std::string authorityFile_;
  Mutex mutex_;
  std::optional<CurlLibrary> curl_ VORNIX_GUARDED_BY(mutex_);
  CURL* handle_ VORNIX_GUARDED_BY(mutex_) = nullptr;
  std::size_t received_ VORNIX_GUARDED_BY(mutex_) = 0;
};

HttpResponse CurlHttpClient::send(const HttpRequest& request) {
  if (!isUrlText(request.url)) {
    return failed(NSURLErrorBadURL, "bad URL");
  }
  if (!text::asciiLowercase(request.url).starts_with("https://")) {
    return failed(NSURLErrorUnsupportedURL, "unsupported URL");
  }
  try {
    const Lock lock(mutex_);
    return prepare() ? exchange(request) : failed(NSURLErrorUnknown, "no HTTPS client");
  } catch (const std::exception& exception) {
    return failed(NSURLErrorUnknown, exception.what());
  }
}

bool CurlHttpClient::prepare() {
  if (handle_ != nullptr) {
    return true;
  }
  std::string why;
  curl_ = CurlLibrary::load(soname_.c_str(), &why);
  handle_ = curl_ ? curl_->init() : nullptr;
  if (handle_ == nullptr) {
    reportDiagnostic("HTTPS client cannot be loaded: " + why);
  }
  return handle_ != nullptr;
}

CURLcode CurlHttpClient::configureTrust() {
  const char* none = nullptr;
  const char* file = authorityFile_.empty() ? none : authorityFile_.c_str();
  return firstFailure({set(CURLOPT_CAINFO, file),
                       set(CURLOPT_CAPATH, file != nullptr ? none : systemAuthorities),
                       set(CURLOPT_SSL_VERIFYPEER, 1L), set(CURLOPT_SSL_VERIFYHOST, 2L),
                       set(CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2))});
}

CURLcode CurlHttpClient::configure(const HttpRequest& request, const HeaderList& headers) {
  // Keeps the open connections.
  curl_->reset(handle_);
  received_ = 0;
  // Does not wait for a name server that is slower than the time limit; older libraries cannot.
  (void)set(CURLOPT_QUICK_EXIT, 1L);
  return firstFailure(
      {configureTrust(), set(CURLOPT_URL, request.url.c_str()), set(CURLOPT_PROTOCOLS_STR, "https"),
       set(CURLOPT_REDIR_PROTOCOLS_STR, "https"), set(CURLOPT_FOLLOWLOCATION, 1L),
       set(CURLOPT_MAXREDIRS, mostRedirects), set(CURLOPT_HTTPGET, 1L),
       set(CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1)),
       set(CURLOPT_HTTPHEADER, headers.get()),
       set(CURLOPT_TIMEOUT_MS, milliseconds(request.timeout)), set(CURLOPT_NOSIGNAL, 1L),
       set(CURLOPT_OPENSOCKETFUNCTION, openPrivateSocket), set(CURLOPT_WRITEFUNCTION, discardBody),
       set(CURLOPT_WRITEDATA, &received_)});
}

HttpResponse CurlHttpClient::exchange(const HttpRequest& request) {
  const HeaderList headers(*curl_, request);
  CURLcode code = configure(request, headers);
  if (code != CURLE_OK) {
    return failed(NSURLErrorUnknown, curl_->errorText(code));
  }
  code = curl_->perform(handle_);
  // The list ends with this exchange, the handle does not.
  (void)set(CURLOPT_HTTPHEADER, static_cast<curl_slist*>(nullptr));
  long status = 0;
  (void)curl_->information(handle_, CURLINFO_RESPONSE_CODE, &status);
  HttpResponse response{.status = static_cast<int>(status)};
  if (code != CURLE_OK) {
    response.error = urlError(platformCode(code), curl_->errorText(code));
  }
  return response;
}

}  // namespace

std::unique_ptr<HttpClient> makeCurlHttpClient(std::string soname,
                                               std::string certificateAuthorityFile) {
  return std::make_unique<CurlHttpClient>(std::move(soname), std::move(certificateAuthorityFile));
}

std::unique_ptr<HttpClient> makeHttpClient(std::string certificateAuthorityFile) {
  return makeCurlHttpClient("libcurl.so.4", std::move(certificateAuthorityFile));
}

}  // namespace vornix
