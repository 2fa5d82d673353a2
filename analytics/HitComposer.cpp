#include "analytics/HitComposer.h"

#include "analytics/AnalyticsParameter.h"
#include "analytics/HitType.h"
#include "foundation/NSString+NSStringAdditions.h"
#include "platform/base/Format.h"
#include "platform/base/Text.h"

namespace vornix {
namespace {

void addUnlessGiven(Dictionary& hit, const Dictionary& given, std::string_view key,
                    const std::function<std::optional<std::string>()>& ask) {
  if (!ask || given.contains(key)) return;
  if (auto value = ask()) hit.set(key, *std::move(value));
}

bool isNull(const Value* value) {
  return value != nullptr && value->is<Null>();
}

}  // namespace

Dictionary filteredParameters(const Dictionary& parameters, std::string_view hitType,
                              const AutomaticParameters& automatic) {
  auto hit = parameters;
  hit.set(kHitTypeParameter, hitType);
  addUnlessGiven(hit, parameters, AnalyticsParameter::cd, automatic.contentDescription);
  addUnlessGiven(hit, parameters, AnalyticsParameter::uid, automatic.sessionIdentifier);
  for (const auto& [key, value] : parameters) {
    if (isNull(hit.find(key))) hit.remove(key);
  }
  return hit;
}

std::string baseUrl(const HitOrigin& origin) {
  return text::format("https://%@/collect?v=1&tid=%@&an=%@&av=%@&cid=%@", origin.collectionHost,
                      origin.gaid, text::productName, origin.applicationVersion,
                      origin.clientIdentifier);
}

std::string requestUrl(const HitOrigin& origin, const Dictionary& parameters,
                       std::string_view systemInfo) {
  auto url = baseUrl(origin);
  for (const auto& [key, value] : parameters) {
    url += text::format("&%@=%@", key, vnx_stringEncodedAsURL(value.description()));
  }
  url += systemInfo;
  return url;
}

}  // namespace vornix
