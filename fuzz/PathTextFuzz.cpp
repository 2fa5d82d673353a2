#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/support/Halves.h"
#include "fuzz/support/Require.h"
#include "platform/base/PathText.h"

using namespace vornix;

namespace {

// A path taken apart, step by step.
struct PlainPath {
  bool isAbsolute = false;
  std::vector<std::string> names{};
};

PlainPath plainPath(std::string_view text) {
  PlainPath path{text.starts_with('/')};
  bool isInName = false;
  for (const char c : text) {
    if (c != '/' && !isInName) path.names.emplace_back();
    isInName = c != '/';
    if (isInName) path.names.back() += c;
  }
  return path;
}

std::string textOf(const PlainPath& path) {
  std::string text;
  for (const std::string& name : path.names) {
    if (!text.empty() || path.isAbsolute) text += '/';
    text += name;
  }
  return text.empty() && path.isAbsolute ? "/" : text;
}

std::string plainLast(const PlainPath& path) {
  return path.names.empty() ? textOf(path) : path.names.back();
}

// With its dot; empty where there is none.
std::string plainExtension(const std::string& name) {
  static constexpr std::array<std::string_view, 13> forbidden{
      " ",      "\u061C", "\u200E", "\u200F", "\u202A", "\u202B", "\u202C",
      "\u202D", "\u202E", "\u2066", "\u2067", "\u2068", "\u2069"};
  std::size_t dot = name.size();
  for (std::size_t index = 0; index < name.size(); ++index) {
    if (name[index] == '.') dot = index;
  }
  if (dot == 0 || dot + 1 >= name.size() || name.substr(0, dot) == ".") return {};
  const std::string extension = name.substr(dot);
  for (const std::string_view character : forbidden) {
    if (extension.find(character) != std::string::npos) return {};
  }
  return extension;
}

void checkPath(std::string_view text) {
  const PlainPath path = plainPath(text);
  const std::string last = plainLast(path);
  const std::string extension = plainExtension(last);
  fuzz::require(text::lastPathComponent(text) == last);
  fuzz::require(text::pathExtension(text) == (extension.empty() ? "" : extension.substr(1)));
  const std::string whole = textOf(path);
  fuzz::require(text::deletingPathExtension(text) ==
                whole.substr(0, whole.size() - extension.size()));
  PlainPath folder = path;
  if (!folder.names.empty()) folder.names.pop_back();
  fuzz::require(text::deletingLastPathComponent(text) == textOf(folder));
}

void checkJoining(std::string_view text, std::string_view component) {
  PlainPath joined = plainPath(text);
  const PlainPath more = plainPath(component);
  if (text.empty()) joined.isAbsolute = more.isAbsolute;
  joined.names.insert(joined.names.end(), more.names.begin(), more.names.end());
  fuzz::require(text::appendingPathComponent(text, component) == textOf(joined));
}

}  // namespace

// Paths come apart and together as they do name by name.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto [component, path] = fuzz::halvesOf(data, size);
  checkPath(path);
  checkPath(component);
  checkJoining(path, component);
  return 0;
}
