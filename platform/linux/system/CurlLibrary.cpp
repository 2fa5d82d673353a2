#include "platform/linux/system/CurlLibrary.h"

#include "platform/linux/system/SharedLibrary.h"

namespace vornix {

std::optional<CurlLibrary> CurlLibrary::load(const char* soname, std::string* why) {
  const auto library = SharedLibrary::open(soname, why);
  if (!library) {
    return std::nullopt;
  }
  CurlLibrary curl;
  const bool complete = library->bind(curl.init, "curl_easy_init", why) &&
                        library->bind(curl.cleanup, "curl_easy_cleanup", why) &&
                        library->bind(curl.reset, "curl_easy_reset", why) &&
                        library->bind(curl.setOption, "curl_easy_setopt", why) &&
                        library->bind(curl.perform, "curl_easy_perform", why) &&
                        library->bind(curl.information, "curl_easy_getinfo", why) &&
                        library->bind(curl.errorText, "curl_easy_strerror", why) &&
                        library->bind(curl.appendToList, "curl_slist_append", why) &&
                        library->bind(curl.freeList, "curl_slist_free_all", why);
  return complete ? std::optional(curl) : std::nullopt;
}

}  // namespace vornix
