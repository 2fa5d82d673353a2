#pragma once

#include <curl/curl.h>

#include <optional>
#include <string>

namespace vornix {

// The functions of libcurl that are used here.
struct CurlLibrary {
  decltype(curl_easy_init)* init = nullptr;
  decltype(curl_easy_cleanup)* cleanup = nullptr;
  decltype(curl_easy_reset)* reset = nullptr;
  decltype(curl_easy_setopt)* setOption = nullptr;
  decltype(curl_easy_perform)* perform = nullptr;
  decltype(curl_easy_getinfo)* information = nullptr;
  decltype(curl_easy_strerror)* errorText = nullptr;
  decltype(curl_slist_append)* appendToList = nullptr;
  decltype(curl_slist_free_all)* freeList = nullptr;

  // None when the library or one of the functions is missing; `why` then says so.
  [[nodiscard]] static std::optional<CurlLibrary> load(const char* soname, std::string* why);
};

}  // namespace vornix
