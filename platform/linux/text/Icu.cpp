#include "platform/linux/text/Icu.h"

#include <string_view>

#include "platform/base/Diagnostics.h"
#include "platform/linux/system/IcuName.h"
#include "platform/linux/system/SharedLibrary.h"

namespace vornix {
namespace {

// The root locale; a null one would be the user's.
constexpr const char* kNoLocale = "";

// The result lives for the process, so that no thread finds it destroyed.
template <typename Library>
const Library* sharedLibrary(const char* soname, std::string_view withoutIt) {
  std::string why;
  const auto library = Library::load(soname, &why);
  if (library) return new Library(*library);
  reportDiagnostic(std::string(withoutIt) + ": " + why);
  return nullptr;
}

}  // namespace

std::optional<IcuCharacters> IcuCharacters::load(const char* soname, std::string* why) {
  const auto library = SharedLibrary::open(soname, why);
  if (!library) return std::nullopt;
  IcuCharacters icu;
  decltype(&unorm2_getNFDInstance) normalizer = nullptr;
  const bool bound =
      library->bind(icu.openCaseMap, VORNIX_ICU_NAME(ucasemap_open), why) &&
      library->bind(icu.closeCaseMap, VORNIX_ICU_NAME(ucasemap_close), why) &&
      library->bind(icu.toLower, VORNIX_ICU_NAME(ucasemap_utf8ToLower), why) &&
      library->bind(icu.toTitle, VORNIX_ICU_NAME(ucasemap_toTitle), why) &&
      library->bind(icu.foldString, VORNIX_ICU_NAME(u_strFoldCase), why) &&
      library->bind(icu.decomposition, VORNIX_ICU_NAME(unorm2_getDecomposition), why) &&
      library->bind(icu.combiningClass, VORNIX_ICU_NAME(unorm2_getCombiningClass), why) &&
      library->bind(icu.category, VORNIX_ICU_NAME(u_charType), why) &&
      library->bind(normalizer, VORNIX_ICU_NAME(unorm2_getNFDInstance), why);
  if (!bound) return std::nullopt;
  UErrorCode error = U_ZERO_ERROR;
  icu.normalizer = normalizer(&error);
  icu.lowerMap = icu.openCaseMap(kNoLocale, 0, &error);
  if (U_SUCCESS(error)) return icu;
  if (why != nullptr) *why = "ICU error " + std::to_string(static_cast<int>(error));
  return std::nullopt;
}

const IcuCharacters* IcuCharacters::shared() {
  static const IcuCharacters* const icu = sharedLibrary<IcuCharacters>(
      "libicuuc.so." U_ICU_VERSION_SHORT, "Characters beyond ASCII count as plain ones");
  return icu;
}

std::optional<IcuExpressions> IcuExpressions::load(const char* soname, std::string* why) {
  const auto library = SharedLibrary::open(soname, why);
  IcuExpressions icu;
  const bool bound =
      library && library->bind(icu.open, VORNIX_ICU_NAME(uregex_open), why) &&
      library->bind(icu.clone, VORNIX_ICU_NAME(uregex_clone), why) &&
      library->bind(icu.close, VORNIX_ICU_NAME(uregex_close), why) &&
      library->bind(icu.setText, VORNIX_ICU_NAME(uregex_setText), why) &&
      library->bind(icu.setRegion, VORNIX_ICU_NAME(uregex_setRegion), why) &&
      library->bind(icu.useAnchoringBounds, VORNIX_ICU_NAME(uregex_useAnchoringBounds), why) &&
      library->bind(icu.useTransparentBounds, VORNIX_ICU_NAME(uregex_useTransparentBounds), why) &&
      library->bind(icu.find, VORNIX_ICU_NAME(uregex_find), why) &&
      library->bind(icu.start, VORNIX_ICU_NAME(uregex_start), why) &&
      library->bind(icu.end, VORNIX_ICU_NAME(uregex_end), why);
  return bound ? std::optional(icu) : std::nullopt;
}

const IcuExpressions* IcuExpressions::shared() {
  static const IcuExpressions* const icu = sharedLibrary<IcuExpressions>(
      "libicui18n.so." U_ICU_VERSION_SHORT, "No regular expression compiles");
  return icu;
}

}  // namespace vornix
