#include "deflang/expression/variables.h"

#include <gtest/gtest.h>

#include "base/system_log.h"

namespace {

using namespace std::string_literals;

TEST(OperandOf, IsANumberWhenAllOfTheTextIsOne) {
  struct Case {
    std::string text;
    OperandKind kind;
    int32_t number;
  };
  const Case cases[] = {
      {"16", OPERAND_NUMBER, 16},  {"0x10", OPERAND_NUMBER, 16}, {"-1", OPERAND_NUMBER, -1},
      {" 5", OPERAND_NUMBER, 5},   {"", OPERAND_NUMBER, 0},      {"12ab", OPERAND_STRING, 0},
      {"auto", OPERAND_STRING, 0}, {"5 ", OPERAND_STRING, 0},    {"5\0"s, OPERAND_STRING, 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    const Operand operand = operandOf(c.text);
    EXPECT_EQ(operand.kind, c.kind);
    EXPECT_EQ(operand.number, c.number);
    EXPECT_EQ(operand.text, c.text);
    EXPECT_EQ(operandText(operand), c.text);
  }
}

TEST(OperandOf, KeepsTheEmptyTextOfAViewOfNothing) {
  const Operand operand = operandOf(std::string_view());
  EXPECT_EQ(operand.kind, OPERAND_NUMBER);
  EXPECT_EQ(operandText(operand), "");
}

TEST(OperandText, IsTheDecimalNumberWithoutAText) {
  EXPECT_EQ(operandText({OPERAND_NUMBER, -1080, {}}), "-1080");
}

TEST(Situation, HoldsWhatIsBound) {
  Situation situation(3);
  EXPECT_EQ(situation.size(), 3U);
  EXPECT_EQ(situation[1].kind, OPERAND_INVALID);
  situation.bind(1, operandOf("7"));
  EXPECT_EQ(situation[1].number, 7);
  EXPECT_EQ(situation[0].kind, OPERAND_INVALID);
  situation.bind(1, Operand{});
  EXPECT_EQ(situation[1].kind, OPERAND_INVALID);
}

TEST(Situation, HoldsAsManyAsItHasSlots) {
  // Few are kept in the situation itself.
  for (size_t slots = 1; slots < 8; ++slots) {
    SCOPED_TRACE(slots);
    Situation situation(slots);
    for (uint32_t slot = 0; slot < slots; ++slot) {
      situation.bind(slot, {OPERAND_NUMBER, static_cast<int32_t>(slot) + 100, {}});
    }
    EXPECT_EQ(situation.size(), slots);
    for (uint32_t slot = 0; slot < slots; ++slot) {
      EXPECT_EQ(situation[slot].number, static_cast<int32_t>(slot) + 100);
    }
  }
}

TEST(SituationView, SeesTheSituation) {
  Situation situation(3);
  situation.bind(0, operandOf("10"));
  const SituationView view(situation);
  EXPECT_EQ(view[0].number, 10);
  EXPECT_EQ(view[1].kind, OPERAND_INVALID);
}

TEST(SituationView, OfNoSituationHasNothingBound) {
  const SituationView view;
  EXPECT_EQ(view[0].kind, OPERAND_INVALID);
  EXPECT_EQ(view[1000].kind, OPERAND_INVALID);
}

class BoundVariablesTest : public testing::Test {
 protected:
  std::vector<std::string> dump() {
    std::vector<std::string> lines;
    const LogRedirection redirection([&lines](const std::string& line) { lines.push_back(line); });
    BoundVariables bound;
    bound.add(variables_, situation_);
    bound.dump();
    return lines;
  }
  void bind(const std::string& name, const Operand& value) {
    situation_.bind(variables_.intern(name), value);
  }

  Variables variables_;
  Situation situation_{8};
};

TEST_F(BoundVariablesTest, AreDumpedAsNothingBetweenTheEndsWhenNothingIsBound) {
  variables_.intern("unset");
  EXPECT_EQ(dump(), (std::vector<std::string>{"Var list begin", "Var list end"}));
}

TEST_F(BoundVariablesTest, AreDumpedInByteOrder) {
  bind("sw::this", operandOf("0x10"));
  bind("gain[2]", operandOf("-3"));
  bind("gain", operandOf(""));
  variables_.intern("lost");
  bind("\x80", operandOf("high byte"));
  bind("Zoom", operandOf("a \"b\" %s"));
  bind("frames", {OPERAND_NUMBER, 25, {}});  // a number without a text
  EXPECT_EQ(dump(), (std::vector<std::string>{
                        "Var list begin",
                        "   \"Zoom\"=\"a \"b\" %s\"",
                        "   \"frames\"=\"25\"",
                        "   \"gain\"=\"\"",
                        "   \"gain[2]\"=\"-3\"",
                        "   \"sw::this\"=\"0x10\"",  // as it was bound, not as the number it is
                        "   \"\x80\"=\"high byte\"",
                        "Var list end",
                    }));
}

TEST(BoundVariablesOfSeveral, AreDumpedOnceAsTheyCameFirst) {
  Variables variables[2];
  Situation situations[2] = {Situation(3), Situation(3)};
  const auto bind = [&](size_t number, const char* name, const char* value) {
    situations[number].bind(variables[number].intern(name), operandOf(value));
  };
  bind(0, "row", "1");
  variables[0].intern("mode");  // not bound here
  bind(1, "mode", "2");
  bind(1, "row", "3");
  std::vector<std::string> lines;
  const LogRedirection redirection([&lines](const std::string& line) { lines.push_back(line); });
  BoundVariables bound;
  for (size_t i = 0; i < 2; ++i) bound.add(variables[i], situations[i]);
  bound.dump();
  EXPECT_EQ(lines, (std::vector<std::string>{"Var list begin", "   \"mode\"=\"2\"",
                                             "   \"row\"=\"1\"", "Var list end"}));
}

}  // namespace
