#include "platform/linux/system/DatagramSocket.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <utility>

namespace vornix {
namespace {

void limitWaiting(int descriptor) {
  constexpr timeval kLimit{1, 0};
  setsockopt(descriptor, SOL_SOCKET, SO_SNDTIMEO, &kLimit, sizeof(kLimit));
}

// -1 when nobody listens.
int connectedSocket(const std::string& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (path.empty() || path.size() >= sizeof(address.sun_path)) return -1;
  path.copy(address.sun_path, path.size());
  const int descriptor = ::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
  if (descriptor < 0) return -1;
  limitWaiting(descriptor);
  const auto* target = reinterpret_cast<const sockaddr*>(&address);
  if (::connect(descriptor, target, sizeof(address)) == 0) return descriptor;
  ::close(descriptor);
  return -1;
}

bool receiverIsGone(int error) {
  return error == ECONNREFUSED || error == ENOTCONN || error == ECONNRESET || error == EPIPE;
}

int writeAll(int descriptor, std::string_view contents) {
  while (!contents.empty()) {
    const auto written = ::write(descriptor, contents.data(), contents.size());
    if (written < 0 && errno != EINTR) return errno;
    if (written > 0) contents.remove_prefix(static_cast<std::size_t>(written));
  }
  return 0;
}

int sendDescriptor(int socket, int descriptor) {
  alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(int))> control{};
  msghdr message{};
  message.msg_control = control.data();
  message.msg_controllen = control.size();
  cmsghdr* header = CMSG_FIRSTHDR(&message);
  header->cmsg_level = SOL_SOCKET;
  header->cmsg_type = SCM_RIGHTS;
  header->cmsg_len = CMSG_LEN(sizeof(int));
  std::memcpy(CMSG_DATA(header), &descriptor, sizeof(descriptor));
  return ::sendmsg(socket, &message, MSG_NOSIGNAL) >= 0 ? 0 : errno;
}

}  // namespace

std::optional<DatagramSocket> DatagramSocket::connect(const std::string& path) {
  const int descriptor = connectedSocket(path);
  if (descriptor < 0) return std::nullopt;
  return DatagramSocket(descriptor, path);
}

DatagramSocket::DatagramSocket(int descriptor, std::string path)
    : descriptor_(descriptor), path_(std::move(path)) {}

DatagramSocket::DatagramSocket(DatagramSocket&& other) noexcept
    : descriptor_(std::exchange(other.descriptor_, -1)), path_(std::move(other.path_)) {}

DatagramSocket& DatagramSocket::operator=(DatagramSocket&& other) noexcept {
  std::swap(descriptor_, other.descriptor_);
  std::swap(path_, other.path_);
  return *this;
}

DatagramSocket::~DatagramSocket() {
  if (descriptor_ >= 0) ::close(descriptor_);
}

template <typename Send>
int DatagramSocket::sendOrReconnect(const Send& send) {
  const int error = send(descriptor_);
  if (!receiverIsGone(error)) return error;
  const int replacement = connectedSocket(path_);
  if (replacement < 0) return error;
  ::close(std::exchange(descriptor_, replacement));
  return send(descriptor_);
}

int DatagramSocket::send(std::string_view datagram) {
  return sendOrReconnect([datagram](int descriptor) {
    return ::send(descriptor, datagram.data(), datagram.size(), MSG_NOSIGNAL) >= 0 ? 0 : errno;
  });
}

int DatagramSocket::sendAsFile(std::string_view contents) {
  const int file = ::memfd_create("vornix-log", MFD_CLOEXEC | MFD_ALLOW_SEALING);
  if (file < 0) return errno;
  int error = writeAll(file, contents);
  constexpr int kSeals = F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_WRITE | F_SEAL_SEAL;
  if (error == 0 && ::fcntl(file, F_ADD_SEALS, kSeals) != 0) error = errno;
  if (error == 0) {
    error = sendOrReconnect([file](int descriptor) { return sendDescriptor(descriptor, file); });
  }
  ::close(file);
  return error;
}

}  // namespace vornix
