#include "platform/linux/text/Icu.h"

#include <string_view>

#include "platform/base/Diagnostics.h"
#include "platform/linux/system/SharedLibrary.h"

// ICU's functions carry its version in their names, which the headers add by macros.
#define VORNIX_TEXT_OF(name) #name
#define VORNIX_NAME_OF(function) VORNIX_TEXT_OF(function)

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
      library->bind(icu.openCaseMap, VORNIX_NAME_OF(ucasemap_open), why) &&
      library->bind(icu.closeCaseMap, VORNIX_NAME_OF(ucasemap_close), why) &&
      library->bind(icu.toLower, VORNIX_NAME_OF(ucasemap_utf8ToLower), why) &&
      library->bind(icu.toTitle, VORNIX_NAME_OF(ucasemap_toTitle), why) &&
      library->bind(icu.foldString, VORNIX_NAME_OF(u_strFoldCase), why) &&
      library->bind(icu.decomposition, VORNIX_NAME_OF(unorm2_getDecomposition), why) &&
      library->bind(icu.combiningClass, VORNIX_NAME_OF(unorm2_getCombiningClass), why) &&
      library->bind(icu.category, VORNIX_NAME_OF(u_charType), why) &&
      library->bind(normalizer, VORNIX_NAME_OF(unorm2_getNFDInstance), why);
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
      library && library->bind(icu.open, VORNIX_NAME_OF(uregex_open), why) &&
      library->bind(icu.clone, VORNIX_NAME_OF(uregex_clone), why) &&
      library->bind(icu.close, VORNIX_NAME_OF(uregex_close), why) &&
      library->bind(icu.setText, VORNIX_NAME_OF(uregex_setText), why) &&
      library->bind(icu.setRegion, VORNIX_NAME_OF(uregex_setRegion), why) &&
      library->bind(icu.useAnchoringBounds, VORNIX_NAME_OF(uregex_useAnchoringBounds), why) &&
      library->bind(icu.useTransparentBounds, VORNIX_NAME_OF(uregex_useTransparentBounds), why) &&
      library->bind(icu.find, VORNIX_NAME_OF(uregex_find), why) &&
      library->bind(icu.start, VORNIX_NAME_OF(uregex_start), why) &&
      library->bind(icu.end, VORNIX_NAME_OF(uregex_end), why);
  return bound ? std::optional(icu) : std::nullopt;
}

const IcuExpressions* IcuExpressions::shared() {
  static const IcuExpressions* const icu = sharedLibrary<IcuExpressions>(
      "libicui18n.so." U_ICU_VERSION_SHORT, "No regular expression compiles");
  return icu;
}

}  // namespace vornix
