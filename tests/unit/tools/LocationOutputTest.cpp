#include "tools/ctl/LocationOutput.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "tools/ctl/JsonText.h"

namespace vornix::tools {
namespace {

using Row = std::pair<std::string, std::string>;

TEST(LocationTable, AlignsItsColumns) {
  const std::vector<Location> locations{{"userHome", "/home/ada", true},
                                        {"darwinUserCaches", std::nullopt, false},
                                        {"userLogs", "/home/ada/Library/Logs", false}};
  EXPECT_EQ(locationTable(locations),
            "NAME              PATH                    EXISTS\n"
            "userHome          /home/ada               yes\n"
            "darwinUserCaches  -                       no\n"
            "userLogs          /home/ada/Library/Logs  no\n");
}

TEST(LocationTable, CountsCharactersAndNotBytes) {
  const std::vector<Location> locations{{"a", "/caf\xC3\xA9", true}, {"b", "/cafes", true}};
  EXPECT_EQ(locationTable(locations),
            "NAME  PATH    EXISTS\n"
            "a     /caf\xC3\xA9   yes\n"
            "b     /cafes  yes\n");
}

TEST(LocationTable, OfNothingIsItsHeading) {
  EXPECT_EQ(locationTable({}), "NAME  PATH  EXISTS\n");
}

TEST(LocationTable, ShowsEveryPathInOneHarmlessLine) {
  const Row rows[] = {
      {"", ""},
      {"-", "-"},
      {"/a b", "/a b"},
      {"/a\\b", "/a\\\\b"},
      {"/a\nb", "/a\\x0ab"},
      {"/a\tb", "/a\\x09b"},
      {"/\x1B[31m", "/\\x1b[31m"},
      {"/\x7F", "/\\x7f"},
      {std::string("/\0", 2), "/\\x00"},
      {"/\xC2\x9B"
       "0m",
       "/\\xc2\\x9b0m"},
      {"/\xFF\xE9", "/\\xff\\xe9"},
      {"/\xC3", "/\\xc3"},
      {"/\xED\xA0\x80", "/\\xed\\xa0\\x80"},
      {"/\xC0\x80", "/\\xc0\\x80"},
      {"/\xE2\x80\xAE"
       "gpj",
       "/\\xe2\\x80\\xaegpj"},
      {"/\xE2\x81\xA6", "/\\xe2\\x81\\xa6"},
      {"/\xE2\x80\xA8", "/\\xe2\\x80\\xa8"},
      {"/\xE2\x80\x8B\xEF\xBB\xBF", "/\xE2\x80\x8B\xEF\xBB\xBF"},
      {"/\xF0\x9F\x98\x80", "/\xF0\x9F\x98\x80"},
      {"/e\xCC\x81\xEA\xB0\x80", "/e\xCC\x81\xEA\xB0\x80"},
      {"/\xC3\x9F\xC4\xB0\xCF\x82", "/\xC3\x9F\xC4\xB0\xCF\x82"},
      {"/\xD7\xA9", "/\xD7\xA9"},
      {"/%@%s", "/%@%s"},
  };
  for (const auto& [path, shown] : rows) {
    const std::vector<Location> locations{{"n", path, true}};
    const std::string table = locationTable(locations);
    const auto line = table.substr(table.find('\n') + 1);
    EXPECT_EQ(line.substr(6, shown.size()), shown);
    EXPECT_EQ(line.find('\n'), line.size() - 1) << shown;
  }
}

TEST(LocationsAsJson, AreObjectsInAnArray) {
  const std::vector<Location> locations{{"userHome", "/home/ada", true},
                                        {"darwinUserCaches", std::nullopt, false}};
  EXPECT_EQ(locationsAsJson(locations),
            "[\n"
            "  {\"name\": \"userHome\", \"path\": \"/home/ada\", \"exists\": true},\n"
            "  {\"name\": \"darwinUserCaches\", \"path\": null, \"exists\": false}\n"
            "]\n");
  EXPECT_EQ(locationsAsJson({}), "[\n]\n");
}

TEST(JsonPath, IsTheTextItselfOrTheAddressOfOneThatIsNoText) {
  const Row rows[] = {
      {"", "\"\""},
      {"/", "\"/\""},
      {"/a b", "\"/a b\""},
      {"/\"q\"", "\"/\\\"q\\\"\""},
      {"/a\\b", "\"/a\\\\b\""},
      {"/a\nb\tc\rd", "\"/a\\nb\\tc\\rd\""},
      {"/\x01\x1F\x7F", "\"/\\u0001\\u001f\\u007f\""},
      {std::string("/\0", 2), "\"/\\u0000\""},
      {"/%20", "\"/%20\""},
      {"/\xC3\xA9", "\"/\xC3\xA9\""},
      {"/e\xCC\x81\xEA\xB0\x80", "\"/e\xCC\x81\xEA\xB0\x80\""},
      {"/\xF0\x9F\x98\x80", "\"/\xF0\x9F\x98\x80\""},
      {"/\xEF\xBB\xBF\xE2\x80\x8B", "\"/\xEF\xBB\xBF\xE2\x80\x8B\""},
      {"/\xE2\x80\xAE\xD7\xA9", "\"/\xE2\x80\xAE\xD7\xA9\""},
      {"/\xC3\x9F\xC4\xB0\xCF\x82", "\"/\xC3\x9F\xC4\xB0\xCF\x82\""},
      {"/a b\xFF", "\"file:///a%20b%FF\""},
      {"/caf\xE9/x", "\"file:///caf%E9/x\""},
      {"/\xC3\xA9\xFF%", "\"file:///%C3%A9%FF%25\""},
      {"/\xED\xA0\x80", "\"file:///%ED%A0%80\""},
      {"/\xC0\x80\"\n", "\"file:///%C0%80%22%0A\""},
      {"a\xFFz", "\"a\xEF\xBF\xBDz\""},
      {"\xED\xA0\x80", "\"\xEF\xBF\xBD\""},
      {"/" + std::string(100000, 'x'), "\"/" + std::string(100000, 'x') + "\""},
  };
  for (const auto& [path, json] : rows) EXPECT_EQ(jsonPath(path), json);
}

}  // namespace
}  // namespace vornix::tools
