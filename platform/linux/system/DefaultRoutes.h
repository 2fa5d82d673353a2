#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vornix {

// The interfaces that the kernel's routing tables (the texts of /proc/net/route and
// /proc/net/ipv6_route, none where unreadable) use as the way out: IPv4 first, cheapest first, each
// once, without the loopback and without refusing routes. None when both are unreadable.
[[nodiscard]] std::optional<std::vector<std::string>> defaultRouteInterfaces(
    const std::optional<std::string>& route, const std::optional<std::string>& ipv6Route);

}  // namespace vornix
