#include "doc/script_json.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

namespace {

using Json = nlohmann::ordered_json;

TEST(ScriptJson, KeepsEveryByte) {
  std::string bytes;
  for (int byte = 1; byte < 256; ++byte) bytes += static_cast<char>(byte);
  const std::string text = scriptJson(charactersOf(bytes));
  for (const char c : text) EXPECT_TRUE(' ' <= c && c <= '~') << static_cast<int>(c);
  const std::string read = Json::parse(text);
  EXPECT_EQ(read, charactersOf(bytes));
  EXPECT_EQ(read.size(), 0x7FU + 2 * 0x80U);
}

TEST(ScriptJson, CannotEndItsScriptElement) {
  const struct {
    const char* text;
    const char* json;
  } cases[] = {
      {"</script>", R"("\u003c/script>")"},
      {"<!--<script", R"("\u003c!--\u003cscript")"},
      {"a\"b\\", R"("a\"b\\")"},
      {"\xE2\x80\xA8", R"("\u00e2\u0080\u00a8")"},
      {"", R"("")"},
  };
  for (const auto& c : cases) EXPECT_EQ(scriptJson(charactersOf(c.text)), c.json);
}

TEST(ScriptJson, MendsWhatIsNoUtf8) { EXPECT_EQ(scriptJson("a\xFF"), R"("a\ufffd")"); }

TEST(ScriptJson, IsOnOneLine) {
  EXPECT_EQ(scriptJson(Json{{"names", {1, "a\nb"}}, {"empty", Json::array()}}),
            R"({"names":[1,"a\nb"],"empty":[]})");
}

}  // namespace
