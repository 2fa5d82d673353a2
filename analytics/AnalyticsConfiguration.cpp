#include "analytics/AnalyticsConfiguration.h"

#include <algorithm>

#include "platform/base/Format.h"
#include "platform/base/Text.h"

namespace vornix {
namespace {

using Complain = std::function<void(std::string_view)>;

bool mayStandInHost(char character) {
  constexpr std::string_view punctuation = ".-:[]_";
  return text::isAsciiLetterOrDigit(character) || punctuation.find(character) != punctuation.npos;
}

bool isHost(std::string_view text) {
  return std::all_of(text.begin(), text.end(), mayStandInHost);
}

bool isNonEmptyText(const Value& value) {
  const auto* text = value.as<std::string>();
  return text != nullptr && !text->empty();
}

// Keeps what `target` holds unless the entry is a text that can be used.
void readText(const Dictionary& list, std::string_view key, std::string& target,
              const Complain& complain) {
  const auto* value = list.find(key);
  if (value == nullptr) {
    complain(text::format("Analytics.plist: %@ is missing; using \"%@\"", key, target));
  } else if (!isNonEmptyText(*value)) {
    complain(text::format("Analytics.plist: %@ is no text; using \"%@\"", key, target));
  } else {
    target = *value->as<std::string>();
  }
}

void readHost(const Dictionary& list, std::string& target, const Complain& complain) {
  auto host = target;
  readText(list, "CollectionHost", host, complain);
  if (!isHost(host)) {
    complain(text::format("Analytics.plist: CollectionHost \"%@\" is no host; using \"%@\"", host,
                          target));
    return;
  }
  target = host;
}

CategoryIdentifiers readCategories(const Dictionary& list, const Complain& complain) {
  CategoryIdentifiers identifiers;
  const auto* value = list.find("CategoryIdentifiers");
  const auto* categories = value == nullptr ? nullptr : value->as<Dictionary>();
  if (categories == nullptr) {
    complain("Analytics.plist: CategoryIdentifiers is no dictionary; no category is duplicated");
    return identifiers;
  }
  for (const auto& [category, identifier] : *categories) {
    if (isNonEmptyText(identifier)) {
      identifiers[category] = *identifier.as<std::string>();
    } else {
      complain(text::format("Analytics.plist: category \"%@\" has no identifier", category));
    }
  }
  return identifiers;
}

}  // namespace

AnalyticsConfiguration analyticsConfigurationFromPropertyList(
    const std::optional<Dictionary>& propertyList, const Complain& complain) {
  AnalyticsConfiguration configuration;
  if (!propertyList) {
    complain("Analytics.plist is missing or unreadable; hits reach nobody");
    return configuration;
  }
  readHost(*propertyList, configuration.collectionHost, complain);
  readText(*propertyList, "ProductionIdentifier", configuration.productionIdentifier, complain);
  readText(*propertyList, "DebugIdentifier", configuration.debugIdentifier, complain);
  readText(*propertyList, "BackupIdentifier", configuration.backupIdentifier, complain);
  configuration.categoryIdentifiers = readCategories(*propertyList, complain);
  if (propertyList->contains("CertificateAuthorityFile")) {
    readText(*propertyList, "CertificateAuthorityFile", configuration.certificateAuthorityFile,
             complain);
  }
  return configuration;
}

}  // namespace vornix
