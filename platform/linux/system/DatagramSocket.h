#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace vornix {

// A local datagram socket, connected to the one at a path. One thread.
class DatagramSocket {
 public:
  // None when nobody takes datagrams there.
  [[nodiscard]] static std::optional<DatagramSocket> connect(const std::string& path);
  DatagramSocket(DatagramSocket&& other) noexcept;
  DatagramSocket& operator=(DatagramSocket&& other) noexcept;
  DatagramSocket(const DatagramSocket&) = delete;
  DatagramSocket& operator=(const DatagramSocket&) = delete;
  ~DatagramSocket();

  // One datagram; waits at most a second for the receiver, and connects once more when it has been
  // started anew. 0, or the error's number (EMSGSIZE: it is too long).
  [[nodiscard]] int send(std::string_view datagram);
  // The same as a sealed file whose descriptor travels in an empty datagram, for what is too long.
  [[nodiscard]] int sendAsFile(std::string_view contents);

 private:
  DatagramSocket(int descriptor, std::string path);
  template <typename Send>
  int sendOrReconnect(const Send& send);

  int descriptor_ = -1;
  std::string path_;
};

}  // namespace vornix
