#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "platform/base/Value.h"

// How a dictionary of parameters becomes the URL of one hit. Any thread.
namespace vornix {

// What a hit gets where its sender says nothing. Each is asked only when it is needed; null or
// none adds nothing.
struct AutomaticParameters {
  std::function<std::optional<std::string>()> contentDescription;
  std::function<std::optional<std::string>()> sessionIdentifier;
};

// The parameters with "t" set to the type, "cd" and "uid" added where the sender has no such key,
// and without those that the sender gave as the null object.
[[nodiscard]] Dictionary filteredParameters(const Dictionary& parameters, std::string_view hitType,
                                            const AutomaticParameters& automatic);

// Whose hit it is. Nothing of it is escaped.
struct HitOrigin {
  std::string collectionHost;
  std::string gaid;
  std::string applicationVersion;
  std::string clientIdentifier;
};

// The URL up to and including the client identifier.
[[nodiscard]] std::string baseUrl(const HitOrigin& origin);

// The whole URL: the base, "&key=value" for each parameter in the dictionary's order with escaped
// values ("(null)" for a text that cannot be escaped), then the system information.
[[nodiscard]] std::string requestUrl(const HitOrigin& origin, const Dictionary& parameters,
                                     std::string_view systemInfo);

}  // namespace vornix
