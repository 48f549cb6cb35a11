#include "doc/device_data.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "doc/script_json.h"
#include "tests/support/database.h"
#include "vid_std.h"

namespace {

using Json = nlohmann::ordered_json;

Json dataOf(std::string_view text, const Constants& constants = {}) {
  initVidStdTables();
  Database database;
  define(database, text, constants);
  return deviceData(database);
}

// The only parameter of a text that begins with "p rw {", and what `member` of it is.
std::string memberOf(const std::string& statements, const char* member) {
  const Json data = dataOf("mode rw { } p rw {" + statements + "}");
  return data["parms"][1].value(member, Json()).dump();
}

TEST(DeviceData, HasEachStatement) {
  const struct {
    const char* statements;
    const char* member;
    const char* json;
  } cases[] = {
      {"", "spans", "null"},
      {"", "readOnly", "null"},
      {"rangeValid { 7..9, 0..3, 4 }", "spans", "[0,4,7,9]"},
      {R"(rangeValid { "b", "a", "c" })", "texts", R"(["b","a","c"])"},  // the first corrects
      {"rangeValid { 0..(mode) }", "ranges", R"([{"items":[{"low":0,"high":[[0]]}]}])"},
      {"rangeValid (mode == 1) { 2 }", "ranges", R"([{"when":[[0],1,"=="],"spans":[2,2]}])"},
      {R"(rangeValid { "7", (mode) })", "ranges",
       R"([{"items":[{"quoted":[["7"]]},{"value":[[0]]}]}])"},
      {R"(rangeValid (mode $ "x") { "a" })", "ranges",
       R"([{"when":[[0],["x"],"$"],"texts":["a"]}])"},
      {"rangeDoc (mode) { 1 } rangeDoc { }", "documented", R"([{"when":[[0]],"spans":[1,1]},{}])"},
      {"default (mode > 1) { (mode + -1) } default { 5 }", "defaults",
       R"([{"when":[[0],1,">"],"value":[[0],-1,"+"]}])"},
      {"default { 5 }", "fallback", R"("5")"},
      {"ctrlValid (mode) ctrlValid (mode - 1)", "available", R"([[[0]],[[0],1,"-"]])"},
      {"ctrlRO (mode)", "readOnly", "[[[0]]]"},
      {R"(valueChange { "on" -> 1 })", "changes", R"([["on","1"]])"},
      {"", "mode", "1"},
      {"ctrlValid (0)", "mode", "0"},
      {"ctrlRO (mode)", "level", "1"},
  };
  for (const auto& c : cases) EXPECT_EQ(memberOf(c.statements, c.member), c.json) << c.statements;
}

TEST(DeviceData, NamesWhatExpressionsNameOnce) {
  const Json data = dataOf(R"(
mode rw { } channel index { rangeValid { 1..2 } }
gain rw { index { channel } rangeValid { 0..(mode + gain[2] + channel + MODEL) } }
trim rw { index { channel } rangeValid { 0..(vidStd::mode::spal + mode) } })",
                           {{"MODEL", "5"}, {"unused", "x"}});
  EXPECT_EQ(data["constants"].dump(), R"([["MODEL","5"],["unused","x"]])");
  EXPECT_EQ(data["names"].dump(), R"([{"parm":1},{"parm":0,"at":["2"]},{"name":"channel"},)"
                                  R"({"name":"MODEL","constant":0},{"parm":1,"figure":0}])");
  EXPECT_EQ(data["parms"][0]["names"].dump(), "[0,1,2,3]");
  EXPECT_EQ(data["parms"][2]["names"].dump(), "[4,0]");
  EXPECT_EQ(data["parms"][0]["indices"].dump(), "[0]");
  EXPECT_EQ(data["indices"][0]["spans"].dump(), "[1,2]");
}

TEST(DeviceData, TellsIndicesThatLookAtIndexValues) {
  const Json data = dataOf(R"(
i index { rangeValid { 1..2 } } j index { rangeValid { 1..2 } rangeValid (i == 1) { 1 } }
p rw { index { i, j } })");
  EXPECT_FALSE(data["indices"][0].contains("varied"));
  EXPECT_EQ(data["indices"][1]["varied"].dump(), "true");
}

TEST(DeviceData, HasTheStandardsThatAValueSelects) {
  const Json data = dataOf("mode rw { } p rw { rangeValid { 0..(vidStd::mode::sptl) } }");
  EXPECT_EQ(data["figures"].dump(), R"(["sptl"])");
  std::map<std::string, std::string> rows;
  for (const Json& row : data["standards"]) rows[row[0]] = row[1].dump();
  EXPECT_EQ(rows["1080i/50"], "2640");
  EXPECT_EQ(rows["1920x1080/50/I"], "null");  // a picture format has no such figure
  EXPECT_FALSE(rows.contains("1080p/25sF"));  // 1080p/25 is selected instead
  EXPECT_EQ(rows.size(), data["standards"].size());
  EXPECT_FALSE(dataOf("mode rw { }").contains("standards"));
}

TEST(DeviceData, KeepsBytesAndMarkup) {
  const std::string text = scriptJson(dataOf("p rw { rangeValid { \"</script>\", \"\xFF\" } }"));
  EXPECT_NE(text.find(R"(["\u003c/script>","\u00ff"])"), std::string::npos) << text;
}

}  // namespace
