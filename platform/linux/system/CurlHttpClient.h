#pragma once

#include <memory>
#include <string>

#include "platform/system/HttpClient.h"

namespace vornix {

// `soname`: the library that is loaded at the first request. `certificateAuthorityFile`: as for
// `makeHttpClient`.
[[nodiscard]] std::unique_ptr<HttpClient> makeCurlHttpClient(std::string soname,
                                                             std::string certificateAuthorityFile);

}  // namespace vornix
