#include "platform/system/NSBundle.h"

#include <algorithm>
#include <map>
#include <utility>

#include "platform/base/Diagnostics.h"
#include "platform/base/Mutex.h"
#include "platform/base/PathText.h"
#include "platform/base/Text.h"
#include "platform/system/NSProcessInfo.h"
#include "platform/system/StringsFile.h"

namespace vornix {
namespace {

constexpr std::string_view kLanguageFolderSuffix = ".lproj";

// "de_DE" and "de-de" name the same language.
std::string normalized(std::string_view language) {
  return text::asciiLowercase(text::replaceAll(language, "_", "-"));
}

std::string withoutRegion(std::string_view language) {
  const std::size_t end = language.rfind('-');
  return std::string(language.substr(0, end == std::string_view::npos ? 0 : end));
}

// The offered name that stands for the language; empty when there is none.
std::string matchingLanguage(std::string_view wanted, const std::vector<std::string>& offered) {
  for (std::string tag = normalized(wanted); !tag.empty(); tag = withoutRegion(tag)) {
    const auto match = std::ranges::find(offered, tag, normalized);
    if (match != offered.end()) return *match;
  }
  return {};
}

Dictionary dictionaryOf(std::optional<Value> value) {
  auto* dictionary = value ? value->as<Dictionary>() : nullptr;
  return dictionary != nullptr ? std::move(*dictionary) : Dictionary();
}

bool isCompiled(std::string_view bytes) {
  return bytes.starts_with("bplist") || bytes.starts_with("<?xml") ||
         bytes.starts_with("<!DOCTYPE") || bytes.starts_with("<plist");
}

}  // namespace

class NSBundle::Contents {
 public:
  Contents(std::string path, Languages preferredLanguages, std::optional<Dictionary> info,
           const ResourceFiles& files)
      : path_(std::move(path)),
        preferredLanguages_(std::move(preferredLanguages)),
        info_(std::move(info)),
        files_(files) {}

  [[nodiscard]] const std::string& path() const { return path_; }

  std::optional<Value> info(std::string_view key) {
    const Lock lock(infoMutex_);
    if (!info_) {
      // What is wrong with the file is told to the log, which asks for the identifier in turn.
      info_.emplace();
      info_ = propertyList("Info.plist").value_or(Dictionary());
    }
    const Value* value = info_->find(key);
    return value != nullptr ? std::optional(*value) : std::nullopt;
  }

  std::optional<std::string> localized(std::string_view key, std::string_view table) {
    const Lock lock(textsMutex_);
    const auto known = tables_.find(table);
    const Dictionary& texts =
        known != tables_.end()
            ? known->second
            : tables_.emplace(std::string(table), readTable(table)).first->second;
    const Value* value = texts.find(key);
    const auto* text = value != nullptr ? value->as<std::string>() : nullptr;
    return text != nullptr ? std::optional(*text) : std::nullopt;
  }

  [[nodiscard]] std::optional<Dictionary> propertyList(std::string_view name) const {
    const std::string path = text::appendingPathComponent(path_, name);
    const auto bytes = files_.contents(path);
    if (!bytes) return std::nullopt;
    auto value = files_.parsePropertyList(*bytes);
    auto* dictionary = value ? value->as<Dictionary>() : nullptr;
    if (dictionary != nullptr) return std::move(*dictionary);
    reportDiagnostic(path + " is no property list with keys");
    return std::nullopt;
  }

 private:
  // The language's own table, else the one without a language, else the base's.
  Dictionary readTable(std::string_view table) VORNIX_REQUIRES(textsMutex_) {
    const std::string file = std::string(table) + ".strings";
    for (const std::string& folder : {languageFolder(), std::string(), std::string("Base.lproj")}) {
      const std::string path =
          text::appendingPathComponent(text::appendingPathComponent(path_, folder), file);
      if (const auto bytes = files_.contents(path)) {
        return isCompiled(*bytes) ? dictionaryOf(files_.parsePropertyList(*bytes))
                                  : parseStringsFile(*bytes);
      }
    }
    return {};
  }

  const std::string& languageFolder() VORNIX_REQUIRES(textsMutex_) {
    if (!languageFolder_) {
      const std::string language = chooseLanguage(offeredLanguages());
      languageFolder_ = language.empty() ? language : language + std::string(kLanguageFolderSuffix);
    }
    return *languageFolder_;
  }

  [[nodiscard]] std::vector<std::string> offeredLanguages() const {
    std::vector<std::string> languages;
    for (const std::string& name : files_.namesInFolder(path_)) {
      if (!name.ends_with(kLanguageFolderSuffix)) continue;
      languages.push_back(name.substr(0, name.size() - kLanguageFolderSuffix.size()));
    }
    std::erase(languages, "Base");
    return languages;
  }

  std::string chooseLanguage(const std::vector<std::string>& offered) {
    for (const std::string& preferred : preferredLanguages_()) {
      if (auto language = matchingLanguage(preferred, offered); !language.empty()) return language;
    }
    const auto region = info("CFBundleDevelopmentRegion");
    const auto* name = region ? region->as<std::string>() : nullptr;
    if (name != nullptr) {
      if (auto language = matchingLanguage(*name, offered); !language.empty()) return language;
    }
    return offered.empty() ? std::string() : offered.front();
  }

  const std::string path_;
  const Languages preferredLanguages_;
  // Taken after `textsMutex_`: the user's languages ask for the main bundle's identifier.
  RecursiveMutex infoMutex_;
  std::optional<Dictionary> info_ VORNIX_GUARDED_BY(infoMutex_);
  Mutex textsMutex_;
  std::optional<std::string> languageFolder_ VORNIX_GUARDED_BY(textsMutex_);
  std::map<std::string, Dictionary, std::less<>> tables_ VORNIX_GUARDED_BY(textsMutex_);
  const ResourceFiles& files_;
};

NSBundle::NSBundle(std::string path, std::vector<std::string> preferredLanguages,
                   std::optional<Dictionary> info, const ResourceFiles& files)
    : contents_(std::make_shared<Contents>(
          std::move(path), [languages = std::move(preferredLanguages)] { return languages; },
          std::move(info), files)) {}

NSBundle::NSBundle(Languages preferredLanguages, std::string path, const ResourceFiles& files)
    : contents_(std::make_shared<Contents>(std::move(path), std::move(preferredLanguages),
                                           std::nullopt, files)) {}

const NSBundle& NSBundle::mainBundle() {
  static const auto& bundle = *new NSBundle(
      &vornix::preferredLanguages,
      bundlePathOfExecutable(NSProcessInfo::processInfo().executablePath()), sharedResourceFiles());
  return bundle;
}

std::optional<Dictionary> NSBundle::infoDictionaryAtApplicationPath(std::string_view path) {
  return sharedResourceFiles().applicationInfo(path);
}

const std::string& NSBundle::bundlePath() const {
  return contents_->path();
}

std::optional<std::string> NSBundle::bundleIdentifier() const {
  const auto value = contents_->info("CFBundleIdentifier");
  const auto* text = value ? value->as<std::string>() : nullptr;
  return text != nullptr && !text->empty() ? std::optional(*text) : std::nullopt;
}

std::optional<Value> NSBundle::objectForInfoDictionaryKey(std::string_view key) const {
  return contents_->info(key);
}

std::string NSBundle::localizedStringForKey(std::string_view key, std::string_view value,
                                            std::string_view table) const {
  auto text = contents_->localized(key, table.empty() ? "Localizable" : table);
  if (text) return std::move(*text);
  return std::string(value.empty() ? key : value);
}

std::optional<Dictionary> NSBundle::propertyListNamed(std::string_view name) const {
  return contents_->propertyList(name);
}

std::string bundlePathOfExecutable(std::string_view executable) {
  const std::string program = text::lastPathComponent(executable);
  std::string folder = text::deletingLastPathComponent(executable);
  const std::string above = text::deletingLastPathComponent(folder);
  const std::string name = text::lastPathComponent(folder);
  std::string prefix;
  if (name == "bin") {
    prefix = above;
  } else if (name == "vornix" && text::lastPathComponent(above) == "libexec") {
    prefix = text::deletingLastPathComponent(above);
  } else {
    return folder;
  }
  return text::appendingPathComponent(text::appendingPathComponent(prefix, "share"), program);
}

}  // namespace vornix
