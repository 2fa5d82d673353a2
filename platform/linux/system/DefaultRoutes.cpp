#include "platform/linux/system/DefaultRoutes.h"

#include <net/route.h>

#include <algorithm>
#include <charconv>
#include <cstdint>

#include "platform/base/Text.h"

namespace vornix {
namespace {

struct Route {
  std::string interface;
  std::uint32_t metric = 0;
};

using Fields = std::vector<std::string>;

Fields fieldsOf(std::string_view line) {
  Fields fields;
  std::string field;
  for (const char each : line) {
    if (each != ' ' && each != '\t') {
      field += each;
    } else if (!field.empty()) {
      fields.push_back(std::move(field));
      field.clear();
    }
  }
  if (!field.empty()) {
    fields.push_back(std::move(field));
  }
  return fields;
}

std::optional<std::uint32_t> number(const std::string& text, int base) {
  std::uint32_t value = 0;
  const char* end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, value, base);
  return result.ec == std::errc() && result.ptr == end ? std::optional(value) : std::nullopt;
}

bool leadsOut(const std::optional<std::uint32_t>& flags, const std::string& interface) {
  constexpr std::uint32_t up = RTF_UP;
  constexpr std::uint32_t reject = RTF_REJECT;
  return flags && (*flags & up) != 0 && (*flags & reject) == 0 && interface != "lo" &&
         interface.find('/') == std::string::npos && interface != "." && interface != "..";
}

bool isZero(const std::string& hexadecimal) {
  return hexadecimal.find_first_not_of('0') == std::string::npos;
}

// Iface Destination Gateway Flags RefCnt Use Metric Mask ...
std::optional<Route> defaultRoute(const Fields& fields) {
  if (fields.size() < 8 || !isZero(fields[1]) || !isZero(fields[7]) ||
      !leadsOut(number(fields[3], 16), fields[0])) {
    return std::nullopt;
  }
  return Route{fields[0], number(fields[6], 10).value_or(UINT32_MAX)};
}

// Destination Prefix Source Prefix NextHop Metric RefCnt Use Flags Iface
std::optional<Route> defaultIpv6Route(const Fields& fields) {
  if (fields.size() < 10 || !isZero(fields[0]) || !isZero(fields[1]) ||
      !leadsOut(number(fields[8], 16), fields[9])) {
    return std::nullopt;
  }
  return Route{fields[9], number(fields[5], 16).value_or(UINT32_MAX)};
}

void append(std::vector<std::string>& interfaces, const std::optional<std::string>& table,
            std::optional<Route> (*read)(const Fields&)) {
  std::vector<Route> routes;
  for (const std::string& line : text::split(table.value_or(""), "\n")) {
    if (auto route = read(fieldsOf(line))) {
      routes.push_back(std::move(*route));
    }
  }
  std::ranges::stable_sort(routes, {}, &Route::metric);
  for (Route& route : routes) {
    if (std::ranges::find(interfaces, route.interface) == interfaces.end()) {
      interfaces.push_back(std::move(route.interface));
    }
  }
}

}  // namespace

std::optional<std::vector<std::string>> defaultRouteInterfaces(
    const std::optional<std::string>& route, const std::optional<std::string>& ipv6Route) {
  if (!route && !ipv6Route) {
    return std::nullopt;
  }
  std::vector<std::string> interfaces;
  append(interfaces, route, defaultRoute);
  append(interfaces, ipv6Route, defaultIpv6Route);
  return interfaces;
}

}  // namespace vornix
