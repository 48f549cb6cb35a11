#include "doc/standard_table.h"

#include <gtest/gtest.h>

#include "doc/testing.h"
#include "play/engine_device.h"

namespace {

std::string textOf(const DocStandardCell& cell) {
  if (!cell.exists) return "-";
  std::string text = cell.hasRange ? "" : "?";
  for (const auto& [low, high] : cell.spans) {
    text += std::to_string(low) + ".." + std::to_string(high) + " ";
  }
  for (const std::string& one : cell.texts) text += one + " ";
  return text + "=" + cell.value;
}

// The lines of a table: the standards, then "PARAMETER INSTANCES: CELL | CELL".
std::vector<std::string> tableOf(const std::string& text) {
  const DocModel model = modelOf(text);
  const std::unique_ptr<Device> device = startEngineDevice(text, {});
  std::vector<std::string> lines;
  for (const DocStandards& standards : standardsOf(model, *device)) {
    std::string head = standards.selector + ":";
    for (const std::string& standard : standards.standards) head += " " + standard;
    lines.push_back(head);
    for (const DocStandardRow& row : standards.rows) {
      std::string line = row.parameter + " " + row.instances + ":";
      for (const DocStandardCell& cell : row.cells) line += " " + textOf(cell) + " |";
      lines.push_back(line);
    }
  }
  return lines;
}

using Lines = std::vector<std::string>;

TEST(Standards, HaveLimitsAndDefaultsOfWhatFollowsThem) {
  EXPECT_EQ(
      tableOf("mode rw { rangeValid { \"625i/50\", \"720p/50 wide\", \"off\", \"1080i/50\" }\n"
              "  default { \"1080i/50\" } }\n"
              "position rw { rangeValid { 0..(vidStd::mode::spal - 1) } default { 960 } }\n"
              "half ro { rangeValid { (position / 2) } }\n"
              "same ro { rangeValid { 0..(1 + 0 * position) } default { 1 } }\n"
              "other rw { default { 3 } }\n"),
      (Lines{"mode: 1080i/50 720p/50 wide 625i/50",
             "position : 0..1919 =960 | 0..1279 =960 | 0..719 =719 |",
             "half : 480..480 =480 | 480..480 =480 | 359..359 =359 |"}));
}

TEST(Standards, TellInstancesApartThatDiffer) {
  EXPECT_EQ(tableOf("mode rw { rangeValid { \"625i/50\", \"720p/50\" } default { \"720p/50\" } }\n"
                    "i index { rangeValid { 1..3 } }\n"
                    "a rw { index { i } rangeValid { 0..(vidStd::mode::alpf) } }\n"
                    "b rw { index { i } rangeValid { 0..(vidStd::mode::alpf / i) }\n"
                    "  ctrlValid (vidStd::mode::f1 != 0) default { 500 } }\n"
                    "c rw { index { i } rangeValid (i == 2) { 0..(vidStd::mode::alpf) }\n"
                    "  rangeValid (i != 2) { 0..5 } default { 9 } }\n"),
            (Lines{"mode: 720p/50 625i/50", "a : 0..720 = | 0..576 = |", "b [1]: - | 0..576 =500 |",
                   "b [2]: - | 0..288 =288 |", "b [3]: - | 0..192 =192 |",
                   "c [1] [3]: 0..5 =5 | 0..5 =5 |", "c [2]: 0..720 =9 | 0..576 =9 |"}));
}

TEST(Standards, EachSelectorHasItsOwn) {
  EXPECT_EQ(
      tableOf("in rw { index { i } rangeValid { \"625i/50\", \"auto\" } default { \"auto\" } }\n"
              "i index { rangeValid { 1..2 } }\n"
              "out rw { rangeValid { \"525i/59.94\" } default { \"525i/59.94\" } }\n"
              "x rw { rangeValid { 0..(vidStd::in[2]::spal), 7 } default { 8 } }\n"
              "y rw { rangeValid { 0..(vidStd::out::tlpf) } }\n"),
      (Lines{"in: 625i/50", "x : 0..720 =8 |", "out: 525i/59.94", "y : 0..525 = |"}));
}

TEST(Standards, OfASelectorOfAnythingAreTheWholeCatalogue) {
  const Lines lines = tableOf(
      "mode ro { default { \"none\" } }\n"
      "x rw { rangeValid { 0..(vidStd::mode::tlpf) } }\n");
  ASSERT_EQ(lines.size(), 2U);
  EXPECT_NE(lines[0].find(" 1920x1080/60/P"), std::string::npos);
  EXPECT_NE(lines[1].find(" 0..1125 = |"), std::string::npos);
  // A picture format has no total lines.
  EXPECT_TRUE(lines[1].ends_with(" ?= |")) << lines[1];
}

TEST(Standards, LookAtTheFirstInstancesOfMany) {
  const std::string mode = "mode rw { rangeValid { \"720p/50\" } default { \"720p/50\" } }\n";
  const std::string a = "a rw { index { i } rangeValid { 0..(vidStd::mode::alpf / i) } }\n";
  const auto rows = [&](const std::string& last) {
    return tableOf(mode + a + "i index { rangeValid { 1.." + last + " } }\n");
  };
  EXPECT_EQ(rows("3"), (Lines{"mode: 720p/50", "a [1]: 0..720 = |", "a [2]: 0..360 = |",
                              "a [3]: 0..240 = |"}));
  EXPECT_EQ(rows("9000"), rows("64"));
  EXPECT_EQ(rows("50000"), Lines());
}

TEST(Standards, DoNotGrowWithTheTextsOfTheDevice) {
  std::string text =
      "mode rw { rangeValid { \"720p/50\" } default { \"720p/50\" } }\n"
      "a rw { default { \"" +
      std::string(200, 'x') + "\" } rangeValid (vidStd::mode::alpf > 0) { ";
  for (int i = 0; i < 50; ++i) text += std::to_string(2 * i) + ", \"t" + std::to_string(i) + "\", ";
  const std::string longText = "\"" + std::string(200, 'x') + "\"";
  const DocModel model = modelOf(text + longText + " } }\n");
  const std::unique_ptr<Device> device = startEngineDevice(text + longText + " } }\n", {});
  const std::vector<DocStandards> standards = standardsOf(model, *device);
  ASSERT_EQ(standards.size(), 1U);
  const DocStandardCell& cell = standards[0].rows[0].cells[0];
  EXPECT_EQ(cell.spans.size(), MANY_ITEMS);
  EXPECT_EQ(cell.texts.size(), MANY_ITEMS);
  EXPECT_TRUE(cell.isCut);
  EXPECT_EQ(cell.value, std::string(MANY_CHARACTERS - 1, 'x') + "…");
}

TEST(Standards, AreNoneWhereNothingFollowsAStandard) {
  EXPECT_EQ(tableOf("a rw { rangeValid { \"625i/50\" } }\n"), Lines());
  EXPECT_EQ(tableOf("a rw { rangeValid { \"off\" } }\n"
                    "b rw { rangeValid { 0..(vidStd::a::spal) } }\n"),
            Lines());
}

}  // namespace
