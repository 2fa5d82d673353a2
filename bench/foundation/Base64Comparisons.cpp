#include <openssl/evp.h>

#include <array>
#include <random>

#include "bench/foundation/Comparisons.h"
#include "foundation/NSString+Hashing.h"

namespace vornix::bench {
namespace {

constexpr std::size_t kLength = 4096;

Data randomData() {
  std::mt19937 engine(1);
  Data data(kLength);
  for (std::byte& byte : data) byte = static_cast<std::byte>(engine() & 0xFFU);
  return data;
}

// OpenSSL's functions write to a buffer that is there already.
using Buffer = std::array<unsigned char, kLength * 2>;

const unsigned char* bytesOf(const void* start) {
  return static_cast<const unsigned char*>(start);
}

}  // namespace

std::vector<Comparison> base64Comparisons() {
  const Data data = randomData();
  const std::string text = base64enc(data);
  static Buffer buffer;
  const auto encode = [data] {
    return EVP_EncodeBlock(buffer.data(), bytesOf(data.data()), static_cast<int>(data.size()));
  };
  const auto decode = [text] {
    return EVP_DecodeBlock(buffer.data(), bytesOf(text.data()), static_cast<int>(text.size()));
  };
  return {{"base64enc, 4 KiB", "OpenSSL EVP_EncodeBlock", 1,
           repeated([data] { return base64enc(data); }), repeated(encode)},
          {"base64dec, 4 KiB", "OpenSSL EVP_DecodeBlock", 1,
           repeated([text] { return base64dec(text); }), repeated(decode)}};
}

}  // namespace vornix::bench
