#include <curl/curl.h>

#include <array>
#include <bit>
#include <cctype>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string_view>

#include "bench/foundation/Comparisons.h"
#include "foundation/NSString+URLAdditions.h"
#include "platform/base/PercentEscapes.h"

namespace vornix::bench {
namespace {

constexpr std::size_t kLength = 4096;

std::string mixedText() {
  std::string text;
  while (text.size() < kLength) {
    text +=
        "Clean-up of /home/anna: 42% done & \u201CGr\u00F6\u00DFe\u201D, \u0395\u03BB\u03BB\u03AC"
        "\u03B4\u03B1, \uD55C\uAD6D\uC5B4 \u2013 is it r/w? \U0001F600 ";
  }
  text.resize(kLength);
  while ((static_cast<unsigned char>(text.back()) & 0x80U) != 0) text.pop_back();
  return text.append(kLength - text.size(), '.');
}

// The loop that cannot be made shorter: a word is written for each byte, and the end moves on by
// what counts of it. It does not care whether the text is well-formed, and writes to a buffer that
// is there already.
class TableLoop {
 public:
  explicit TableLoop(std::string_view kept) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    for (unsigned byte = 0; byte < words_.size(); ++byte) {
      const auto c = static_cast<char>(byte);
      const bool isKept =
          std::isalnum(static_cast<int>(byte)) != 0 || kept.find(c) != std::string_view::npos;
      const Entry entry =
          isKept ? Entry{c, 0, 0, 1} : Entry{'%', digits[byte / 16], digits[byte % 16], 3};
      words_[byte] = std::bit_cast<std::uint32_t>(entry);
    }
  }

  std::size_t escape(std::string_view text) {
    static_assert(std::endian::native == std::endian::little);
    char* end = buffer_.data();
    for (const char c : text) {
      const std::uint32_t word = words_[static_cast<unsigned char>(c)];
      std::memcpy(end, &word, sizeof word);
      end += word >> 24U;
    }
    return static_cast<std::size_t>(end - buffer_.data());
  }

 private:
  using Entry = std::array<char, 4>;
  std::array<std::uint32_t, 256> words_{};
  std::array<char, kLength * 3 + 4> buffer_{};
};

std::size_t curlEscape(CURL* handle, const std::string& text) {
  char* escaped = curl_easy_escape(handle, text.data(), static_cast<int>(text.size()));
  const std::size_t length = std::strlen(escaped);
  curl_free(escaped);
  return length;
}

}  // namespace

std::vector<Comparison> escapeComparisons() {
  const std::string text = mixedText();
  const auto lenient = repeated([text] { return text::addingPercentEscapes(text); });
  const auto strict = repeated([text] { return stringByEncodingURLEscapes(text); });
  const auto loop = [text](std::string_view kept) {
    return repeated(
        [text, table = std::make_shared<TableLoop>(kept)] { return table->escape(text); });
  };
  const auto curl =
      repeated([text, handle = std::shared_ptr<CURL>(curl_easy_init(), curl_easy_cleanup)] {
        return curlEscape(handle.get(), text);
      });
  constexpr double fiveTimesFaster = 0.2;
  return {{"addingPercentEscapes, 4 KiB", "table loop", 1.5, lenient, loop("!$&'()*+,-./:;=?@_~")},
          {"stringByEncodingURLEscapes, 4 KiB", "table loop", 1.5, strict, loop("-._~")},
          {"addingPercentEscapes, 4 KiB", "curl_easy_escape", fiveTimesFaster, lenient, curl},
          {"stringByEncodingURLEscapes, 4 KiB", "curl_easy_escape", fiveTimesFaster, strict, curl}};
}

}  // namespace vornix::bench
