#include "sw/parm/build/definition_draft.h"

#include <gtest/gtest.h>

#include "tests/support/build.h"
#include "tests/support/names.h"

namespace {

constexpr Position NOWHERE = {NO_POSITION, NO_POSITION};

class DefinitionDraftTest : public testing::Test {
 protected:
  DefinitionText text_ = parseText("p rw { ctrlRO (b + a) ctrlRO (a) }\n");
  TestRegistry registry_;
  DiagnosticCollector diagnostics_;
  BuildContext context_{diagnostics_, text_.records, text_.lines, registry_, false};
  DefinitionDraft draft_{context_, *text_.records.find("p")};

  Program keep(const Expression& expression) {
    Compiled compiled;
    EXPECT_EQ(Program::compile(expression, compiled.variables, compiled.program), 0);
    return draft_.keep(expression, std::move(compiled));
  }
};

TEST_F(DefinitionDraftTest, NumbersTheNamesOfWhatIsKept) {
  EXPECT_EQ(draft_.parts.name, "p");
  EXPECT_TRUE(draft_.kept().empty());
  const Expression& first = draft_.record().ctrlRO.front();
  const Expression& second = *std::next(draft_.record().ctrlRO.begin());
  const Program sum = keep(first);
  const Program single = keep(second);
  EXPECT_EQ(namesOf(draft_.parts.variables), (std::vector<std::string>{"b", "a"}));
  EXPECT_EQ(draft_.kept(), (std::vector<const Expression*>{&first, &second}));
  Situation situation(2);
  situation.bind(0, operandOf("3"));
  situation.bind(1, operandOf("4"));
  EXPECT_EQ(sum.evaluate(situation).number, 7);
  EXPECT_EQ(single.evaluate(situation).number, 4);
}

TEST_F(DefinitionDraftTest, NamesItsRecordWhereThereIsNoLine) {
  draft_.warn(DIAG_CONDITION_ZERO, NOWHERE);
  EXPECT_EQ(context_.result(), 0);
  draft_.error(DIAG_INVALID_EXPRESSION, NOWHERE);
  EXPECT_EQ(context_.result(), -1);
  draft_.error(DIAG_UNDEFINED_INDEX, {1, 7}, "i");
  EXPECT_EQ(printed(diagnostics_),
            "Warning\nConditional evaluates to 0. Parameter is \"p\"\n"
            "Error\nInvalid expression. Parameter is \"p\"\n"
            "Error on line 1\nUndefined index. i\n"
            "p rw { ctrlRO (b + a) ctrlRO (a) }\n"
            "       ^\n");
}

}  // namespace
