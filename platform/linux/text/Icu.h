#pragma once

#include <unicode/ucasemap.h>
#include <unicode/uchar.h>
#include <unicode/unorm2.h>
#include <unicode/uregex.h>
#include <unicode/ustring.h>

#include <optional>
#include <string>

namespace vornix {

// ICU's tables of characters, and its case mappings.
struct IcuCharacters {
  decltype(&ucasemap_open) openCaseMap = nullptr;
  decltype(&ucasemap_close) closeCaseMap = nullptr;
  decltype(&ucasemap_utf8ToLower) toLower = nullptr;
  decltype(&ucasemap_toTitle) toTitle = nullptr;
  decltype(&u_strFoldCase) foldString = nullptr;
  decltype(&unorm2_getDecomposition) decomposition = nullptr;
  decltype(&unorm2_getCombiningClass) combiningClass = nullptr;
  decltype(&u_charType) category = nullptr;
  // Live as long as the process.
  const UNormalizer2* normalizer = nullptr;
  const UCaseMap* lowerMap = nullptr;

  // None when the library of that name is missing or not the one we were built for; `why` says
  // more.
  [[nodiscard]] static std::optional<IcuCharacters> load(const char* soname, std::string* why);
  // The process's own, loaded when first asked for. Null when there is none, which is reported
  // once.
  [[nodiscard]] static const IcuCharacters* shared();
};

// ICU's regular expressions.
struct IcuExpressions {
  decltype(&uregex_open) open = nullptr;
  decltype(&uregex_clone) clone = nullptr;
  decltype(&uregex_close) close = nullptr;
  decltype(&uregex_setText) setText = nullptr;
  decltype(&uregex_setRegion) setRegion = nullptr;
  decltype(&uregex_useAnchoringBounds) useAnchoringBounds = nullptr;
  decltype(&uregex_useTransparentBounds) useTransparentBounds = nullptr;
  decltype(&uregex_find) find = nullptr;
  decltype(&uregex_start) start = nullptr;
  decltype(&uregex_end) end = nullptr;

  [[nodiscard]] static std::optional<IcuExpressions> load(const char* soname, std::string* why);
  [[nodiscard]] static const IcuExpressions* shared();
};

}  // namespace vornix
