#include "tests/support/SystemLogListener.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cstring>
#include <stdexcept>
#include <vector>

namespace vornix::tests {
namespace {

constexpr int kSealed = F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_WRITE | F_SEAL_SEAL;

std::string contentsOf(int file) {
  std::string contents(static_cast<std::size_t>(lseek(file, 0, SEEK_END)), '\0');
  if (pread(file, contents.data(), contents.size(), 0) != static_cast<ssize_t>(contents.size())) {
    throw std::runtime_error("the file of a record cannot be read");
  }
  return contents;
}

}  // namespace

SystemLogListener::SystemLogListener(const std::string& path)
    : descriptor_(socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0)) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  path.copy(static_cast<char*>(address.sun_path), sizeof(address.sun_path) - 1);
  unlink(path.c_str());
  if (bind(descriptor_, reinterpret_cast<sockaddr*>(&address), sizeof(address)) != 0) {
    throw std::runtime_error("cannot listen at " + path);
  }
}

SystemLogListener::~SystemLogListener() {
  close(descriptor_);
}

bool SystemLogListener::hasDatagram() const {
  pollfd entry{descriptor_, POLLIN, 0};
  return poll(&entry, 1, 0) == 1;
}

std::string SystemLogListener::receive() const {
  std::vector<char> buffer(1U << 20U);
  iovec part{buffer.data(), buffer.size()};
  alignas(cmsghdr) std::array<char, 256> control{};
  msghdr message{};
  message.msg_iov = &part;
  message.msg_iovlen = 1;
  message.msg_control = control.data();
  message.msg_controllen = control.size();
  const auto length = recvmsg(descriptor_, &message, MSG_DONTWAIT);
  if (length < 0) return "nothing was received";
  const cmsghdr* header = CMSG_FIRSTHDR(&message);
  if (header == nullptr) return {buffer.data(), static_cast<std::size_t>(length)};
  int file = -1;
  std::memcpy(&file, CMSG_DATA(header), sizeof(file));
  sealed_ = fcntl(file, F_GET_SEALS) == kSealed;
  auto contents = contentsOf(file);
  close(file);
  return contents;
}

std::map<std::string, std::string> journalFields(std::string_view record) {
  std::map<std::string, std::string> fields;
  while (!record.empty()) {
    const auto end = record.find_first_of("=\n");
    const std::string name(record.substr(0, end));
    const bool counted = record.at(end) == '\n';
    record.remove_prefix(end + 1);
    std::size_t length = record.find('\n');
    if (counted) {
      std::memcpy(&length, record.data(), sizeof(length));
      record.remove_prefix(sizeof(length));
    }
    fields[name] = record.substr(0, length);
    if (record.at(length) != '\n') throw std::runtime_error("a field of a record has no end");
    record.remove_prefix(length + 1);
  }
  return fields;
}

}  // namespace vornix::tests
