#include "doc/make_model.h"

#include <gtest/gtest.h>

#include "doc/testing.h"

namespace {

const char* const DEVICE = R"(
# ---- Picture ----
# The mode.
mode rw { rangeValid { "film", "video" } default { "video" } }
channel index { rangeValid { 1..2 } rangeValid (mode == "film") { 1 } }
# ---- Sound ----
gain rw {
  index { channel }
  rangeValid (mode == "film") { 0..100 }
  rangeValid (mode == "video" && limit > 0) { 0..(limit - 1), "off" }
  rangeDoc { 0, 50 }
  ctrlRO (locked == 1)
  ctrlValid (MODEL == "pro" && mode != "idle")
  valueChange { "unity" -> 64 }
  default (mode == "film") { (limit / 2) }
  default { 64 }
}
limit ro { rangeValid { 1..255 } rangeValid { "none" } }
locked rw { ctrlRO (1) }
fire wo { }
hidden rostrict { ctrlValid (MODEL == "basic") }
)";

// "LINE: STATEMENT: SENTENCE".
std::string textOf(const DocStatement& statement, const Sentence& sentence) {
  return std::to_string(statement.line) + ": " + statement.text + ": " + plainText(sentence);
}

class ModelOfADevice : public testing::Test {
 protected:
  [[nodiscard]] const DocParameter& parameter(const std::string& name) const {
    return *model_.find(name);
  }
  const DocModel model_ = modelOf(DEVICE, {{"MODEL", "pro"}});
};

TEST_F(ModelOfADevice, HasItsParametersInTheOrderOfTheText) {
  std::string names;
  for (const DocParameter& parameter : model_.parameters) {
    names += parameter.name + " " + parameter.access + " " + std::to_string(parameter.level) + " " +
             parameter.section + "\n";
  }
  EXPECT_EQ(names,
            "mode rw 0 Picture\n"
            "gain rw 1 Sound\n"
            "limit ro 0 Sound\n"
            "locked rw 0 Sound\n"
            "fire wo 0 Sound\n"
            "hidden rostrict 0 Sound\n");
  EXPECT_EQ(model_.find("channel"), nullptr);
  EXPECT_EQ(model_.levels(), 2U);
  EXPECT_EQ(model_.sections(), (std::vector<std::string>{"Picture", "Sound"}));
  EXPECT_EQ(model_.title, "A device");
  EXPECT_EQ(model_.file, "device.ostrel");
  ASSERT_EQ(model_.constants.size(), 1U);
  EXPECT_EQ(model_.constants[0].value, "pro");
}

TEST_F(ModelOfADevice, SaysWhatFollowsWhat) {
  // The index names the mode, and so does what it indexes.
  EXPECT_EQ(parameter("gain").follows, (std::vector<std::string>{"limit", "locked", "mode"}));
  EXPECT_EQ(parameter("mode").followedBy, (std::vector<std::string>{"gain"}));
  EXPECT_EQ(parameter("gain").indices, (std::vector<std::string>{"channel"}));
  ASSERT_EQ(model_.indices.size(), 1U);
  EXPECT_EQ(model_.indices[0].follows, (std::vector<std::string>{"mode"}));
  EXPECT_EQ(model_.indices[0].parameters, (std::vector<std::string>{"gain"}));
  EXPECT_EQ(model_.indices[0].ranges.size(), 2U);
}

TEST_F(ModelOfADevice, HasEachStatement) {
  const DocParameter& gain = parameter("gain");
  ASSERT_EQ(gain.ranges.size(), 2U);
  EXPECT_EQ(textOf(gain.ranges[0].statement, gain.ranges[0].condition),
            "9: rangeValid (mode == \"film\") { 0..100 }: mode is “film”");
  EXPECT_TRUE(gain.ranges[0].isConstant());
  ASSERT_EQ(gain.ranges[1].items.size(), 2U);
  EXPECT_FALSE(gain.ranges[1].isConstant());
  EXPECT_EQ(plainText(gain.ranges[1].items[0].upper), "limit − 1");
  ASSERT_EQ(gain.menus.size(), 1U);
  EXPECT_EQ(gain.menus[0].statement.line, 11U);
  ASSERT_EQ(gain.readOnly.size(), 1U);
  EXPECT_EQ(textOf(gain.readOnly[0].statement, gain.readOnly[0].sentence),
            "12: ctrlRO (locked == 1): locked is 1");
  ASSERT_EQ(gain.available.size(), 1U);
  EXPECT_EQ(gain.available[0].statement.line, 13U);
  ASSERT_EQ(gain.replacements.size(), 1U);
  EXPECT_EQ(gain.replacements[0].statement.text, "valueChange { \"unity\" -> 64 }");
  ASSERT_EQ(gain.defaults.size(), 2U);
  EXPECT_EQ(textOf(gain.defaults[0].statement, gain.defaults[0].value),
            "15: default (mode == \"film\") { (limit / 2) }: limit ÷ 2");
  EXPECT_EQ(textOf(gain.defaults[1].statement, gain.defaults[1].value), "16: default { 64 }: 64");
}

TEST_F(ModelOfADevice, JoinsTheConstantRange) {
  const DocParameter& limit = parameter("limit");
  ASSERT_EQ(limit.ranges.size(), 1U);
  ASSERT_EQ(limit.ranges[0].items.size(), 2U);
  EXPECT_EQ(limit.ranges[0].items[0].span, Span(1, 255));
  EXPECT_EQ(limit.ranges[0].items[1].text, "none");
}

TEST_F(ModelOfADevice, KnowsWhatCannotBeWritten) {
  EXPECT_TRUE(parameter("limit").readOnly.empty());  // its access word says so
  ASSERT_EQ(parameter("locked").readOnly.size(), 1U);
  EXPECT_TRUE(parameter("locked").readOnly[0].sentence.empty());  // always
  EXPECT_TRUE(parameter("hidden").isNever);
  EXPECT_FALSE(parameter("gain").isNever);
}

TEST(Model, HasOnlyTextsThatCanBeShown) {
  const DocModel model = modelOf("# \x1b[31m and \xff\na\xff rw { default { \"\x07\" } }\n");
  ASSERT_EQ(model.parameters.size(), 1U);
  EXPECT_EQ(model.parameters[0].name, "a\xef\xbf\xbd");
  EXPECT_EQ(model.parameters[0].description[0], "\xe2\x90\x9b[31m and \xef\xbf\xbd");
  EXPECT_EQ(plainText(model.parameters[0].defaults[0].value), "“\xe2\x90\x87”");
}

}  // namespace
