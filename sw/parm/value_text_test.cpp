#include "sw/parm/value_text.h"

#include <gtest/gtest.h>

#include <utility>

namespace {

TEST(ValueText, KnowsWhatItIsAsAnOperand) {
  struct {
    std::string text;
    OperandKind kind;
    int32_t number;
  } const cases[] = {
      {"7", OPERAND_NUMBER, 7},     {"-2147483648", OPERAND_NUMBER, INT32_MIN},
      {"0x10", OPERAND_NUMBER, 16}, {" 010", OPERAND_NUMBER, 8},
      {"", OPERAND_NUMBER, 0},  // the empty text counts as 0
      {"12ab", OPERAND_STRING, 0},  {"auto", OPERAND_STRING, 0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE('"' + c.text + '"');
    const ValueText value(c.text);
    EXPECT_EQ(value.text(), c.text);
    EXPECT_EQ(value.operand().kind, c.kind);
    EXPECT_EQ(value.operand().number, c.number);
    EXPECT_EQ(value.operand().text, c.text);
    EXPECT_NE(value.operand().text.data(), nullptr);
  }
}

TEST(ValueText, BeginsEmpty) {
  const ValueText value;
  EXPECT_EQ(value.text(), "");
  EXPECT_EQ(value.operand().kind, OPERAND_NUMBER);
  EXPECT_EQ(value.operand().number, 0);
}

TEST(ValueText, TakesANewText) {
  ValueText value("auto");
  value.set("12");
  EXPECT_EQ(value.text(), "12");
  EXPECT_EQ(value.operand().kind, OPERAND_NUMBER);
  EXPECT_EQ(value.operand().number, 12);
  value.set("off");
  EXPECT_EQ(value.operand().kind, OPERAND_STRING);
  EXPECT_EQ(value.operand().text, "off");
}

TEST(ValueText, TakesATextThatAnotherHolds) {
  for (const char* text : {"0x10", "auto", ""}) {
    SCOPED_TRACE(text);
    const ValueText other(text);
    ValueText value("7");
    value.set(text, other);
    EXPECT_EQ(value.text(), text);
    EXPECT_EQ(value.operand().kind, other.operand().kind);
    EXPECT_EQ(value.operand().number, other.operand().number);
    EXPECT_EQ(value.operand().text.data(), value.text().data());
  }
}

TEST(ValueText, ViewsItsOwnTextAfterACopyAndAMove) {
  ValueText first("auto");
  const ValueText copy = first;
  first.set("off");
  EXPECT_EQ(copy.operand().text, "auto");
  EXPECT_EQ(copy.operand().text.data(), copy.text().data());
  const ValueText moved = std::move(first);
  EXPECT_EQ(moved.operand().text, "off");
  EXPECT_EQ(moved.operand().text.data(), moved.text().data());
}

}  // namespace
