// The one-shot function is deprecated, and still the fastest way to a digest that OpenSSL has.
#define OPENSSL_SUPPRESS_DEPRECATED
#include <openssl/evp.h>
#include <openssl/md5.h>

#include <array>

#include "bench/foundation/Comparisons.h"
#include "foundation/NSString+Hashing.h"

namespace vornix::bench {
namespace {

using Digest = std::array<unsigned char, MD5_DIGEST_LENGTH>;

Digest oneShotDigest(const std::string& text) {
  Digest digest{};
  MD5(reinterpret_cast<const unsigned char*>(text.data()), text.size(), digest.data());
  return digest;
}

Digest envelopeDigest(const std::string& text) {
  Digest digest{};
  EVP_Digest(text.data(), text.size(), digest.data(), nullptr, EVP_md5(), nullptr);
  return digest;
}

}  // namespace

std::vector<Comparison> digestComparisons() {
  std::vector<Comparison> comparisons;
  for (const std::size_t kibibytes : {std::size_t{4}, std::size_t{1024}}) {
    const std::string text(kibibytes * 1024, 'x');
    const std::string name = "md5Hash, " + std::to_string(kibibytes) + " KiB";
    const auto ours = repeated([text] { return md5Hash(text); });
    comparisons.push_back(
        {name, "OpenSSL MD5", 1.15, ours, repeated([text] { return oneShotDigest(text); })});
    comparisons.push_back({name, "OpenSSL EVP_Digest", 1.15, ours,
                           repeated([text] { return envelopeDigest(text); })});
  }
  return comparisons;
}

}  // namespace vornix::bench
