#include "sw/parm/build/classify.h"

#include <gtest/gtest.h>

#include "tests/support/build.h"

namespace {

// The first ctrlRO expression of `text` (the bare expression), classified with two constants; the
// text also defines the parameter "mode", which the constant of that name does not replace.
class Classified {
 public:
  explicit Classified(const std::string& expression)
      : parsed_(parseText("p rw { ctrlRO (" + expression + ") } mode rw { }\nlate ")),
        registry_({{"LIMIT", "0x10"},
                   {"MODEL", "pro"},
                   {"EMPTY", ""},
                   {"mode", "1"},
                   {"mode[2]", "1"},
                   {"sw::this", "1"},
                   {"vidStd::LIMIT::spal", "1"},
                   {"late", "3"},
                   {"X[1]", "7"}}),
        context_(diagnostics_, parsed_.records, parsed_.lines, registry_, false),
        draft_(context_, *parsed_.records.find("p")) {}

  Classification asValue() { return classifyValue(expression(), draft_); }
  Condition asControl() { return classifyControl(expression(), draft_); }
  Condition asCondition() { return classifyCondition(expression(), draft_); }
  std::string report() const { return printed(diagnostics_); }
  int result() const { return context_.result(); }
  const Variables& variables() const { return draft_.parts.variables; }

 private:
  const Expression& expression() { return draft_.record().ctrlRO.front(); }

  DefinitionText parsed_;
  TestRegistry registry_;
  DiagnosticCollector diagnostics_;
  BuildContext context_;
  DefinitionDraft draft_;
};

TEST(ClassifyValue, DecidesWhatTheConstantsDecide) {
  struct Case {
    const char* text;
    const char* value;
    bool isNumber;
    bool namesConstant;
  };
  const Case cases[] = {
      {"5", "5", true, false},
      {"\"5\"", "5", false, false},
      {"\"\"", "", false, false},
      {"2 * 3 + 1", "7", true, false},
      {"\"a\" + \"b\"", "ab", false, false},
      {"LIMIT", "16", true, true},
      {"LIMIT / 4 + 1", "5", true, true},
      {"MODEL", "pro", false, true},
      {"MODEL == \"pro\"", "1", true, true},
      {"EMPTY", "0", true, true},     // the empty text is the number 0
      {"X[1] + 1", "8", true, true},  // a constant's name may hold brackets
      {"late", "3", true, true},      // the text ends before this record is one
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    Classified classified(c.text);
    const Classification result = classified.asValue();
    EXPECT_EQ(result.decision, DECIDED);
    EXPECT_EQ(result.value.asText(), c.value);
    EXPECT_EQ(result.value.isNumber(), c.isNumber);
    EXPECT_EQ(result.namesConstant, c.namesConstant);
    EXPECT_EQ(classified.variables().size(), 0U);
    EXPECT_EQ(classified.report(), "");
  }
}

TEST(ClassifyValue, LeavesOtherNamesToRunTime) {
  struct Case {
    const char* text;
    bool namesConstant;
  };
  const Case cases[] = {
      {"mode", false},     // a name of the text is no constant, whatever the command line says
      {"mode[2]", false},  // nor with index values
      {"unknown", false},
      {"sw::this", false},
      {"vidStd::LIMIT::spal", false},  // its figure is found at run time
      {"mode + LIMIT", true},
      {"mode && 1", false},
      {"LIMIT == 0 && mode == 2", true},
      {"mode && 0", false},  // nor does the defined side decide
      {"5 || unknown", false},
      {"LIMIT && (0 && mode)", true},
      {"mode / 0", false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    Classified classified(c.text);
    const Classification result = classified.asValue();
    EXPECT_EQ(result.decision, RUN_TIME);
    EXPECT_EQ(result.namesConstant, c.namesConstant);
    EXPECT_EQ(classified.variables().size(), 0U);
    EXPECT_EQ(classified.report(), "");
  }
}

TEST(ClassifyValue, ReportsWhatNeverHasAValue) {
  struct Case {
    const char* text;
    const char* report;
  };
  const Case cases[] = {
      {"1/0",
       "Error on line 1\nInvalid expression.\n"
       "p rw { ctrlRO (1/0) } mode rw { }\n"
       "               ^\n"},
      {"  LIMIT % 0",
       "Error on line 1\nInvalid expression.\n"
       "p rw { ctrlRO (  LIMIT % 0) } mode rw { }\n"
       "                 ^\n"},
      {"1 + mode 2",
       "Error on line 1\nInvalid expression.\n"
       "p rw { ctrlRO (1 + mode 2) } mode rw { }\n"
       "                        ^\n"},
      {"1 + (-3)",
       "Error on line 1\nInvalid expression.\n"
       "p rw { ctrlRO (1 + (-3)) } mode rw { }\n"
       "                      ^\n"},
      {"", "Error\nInvalid expression. Parameter is \"p\"\n"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    Classified classified(c.text);
    EXPECT_EQ(classified.asValue().decision, LEFT_OUT);
    EXPECT_EQ(classified.report(), c.report);
    EXPECT_EQ(classified.result(), -1);
  }
}

TEST(ClassifyCondition, TellsWhenItIsTrue) {
  struct Case {
    const char* text;
    ConditionKind kind;
    bool namesConstant;
  };
  const Case cases[] = {
      {"1", CONDITION_ALWAYS, false},
      {"0 - 1", CONDITION_ALWAYS, false},
      {"\"0\"", CONDITION_ALWAYS, false},  // a text that is not empty is true
      {"LIMIT", CONDITION_ALWAYS, true},
      {"0", CONDITION_NEVER, false},
      {"\"\"", CONDITION_NEVER, false},
      {"MODEL == \"basic\"", CONDITION_NEVER, true},
      {"mode == 1", CONDITION_RUN_TIME, false},
      {"mode == LIMIT", CONDITION_RUN_TIME, true},
      {"1 / 0", CONDITION_LEFT_OUT, false},
      {"1 2", CONDITION_LEFT_OUT, false},
      {"mode && 0", CONDITION_NEVER, false},  // the defined side decides
      {"5 || unknown", CONDITION_ALWAYS, false},
      {"LIMIT && (0 && mode)", CONDITION_NEVER, true},
      {"LIMIT == 0 && mode == 2", CONDITION_RUN_TIME, true},  // only a bare name is absorbed
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    const Condition control = Classified(c.text).asControl();
    EXPECT_EQ(control.kind, c.kind);
    EXPECT_EQ(control.namesConstant, c.namesConstant);
    const Condition condition = Classified(c.text).asCondition();
    EXPECT_EQ(condition.kind, c.kind);
    EXPECT_EQ(condition.namesConstant, c.namesConstant);
  }
}

TEST(ClassifyCondition, TakesAnEmptyOneAsTrueButForControls) {
  Classified empty("");
  EXPECT_EQ(empty.asCondition().kind, CONDITION_ALWAYS);
  EXPECT_EQ(empty.report(), "");
  EXPECT_EQ(empty.asControl().kind, CONDITION_LEFT_OUT);
  EXPECT_EQ(empty.report(), "Error\nInvalid expression. Parameter is \"p\"\n");
}

}  // namespace
