#include "sw/parm/build/build_defaults.h"

#include <gtest/gtest.h>

#include "tests/support/build.h"
#include "tests/support/names.h"

namespace {

struct DefaultCase {
  std::string_view statements;
  TestRegistry::Constants constants;
  Texts situation;
  std::string value;
  int result;  // 1 for the fallback
  std::vector<std::string> variables = {};
};

TEST(BuildDefaults, FindsTheDefaultOfASituation) {
  const DefaultCase cases[] = {
      {"", {}, {}, "", 1},
      {"default { 7 }", {}, {}, "7", 1},
      {"default { 0x10 }", {}, {}, "16", 1},
      {"default { \"0x10\" }", {}, {}, "0x10", 1},
      {"default { \"\" }", {}, {}, "", 1},
      {"default { (\"a\" + 2 * 3) }", {}, {}, "a6", 1},
      {"default { (X + 1) }", {{"X", "3"}}, {}, "4", 1},
      {"default () { 7 }", {}, {}, "7", 1},   // an empty condition is none
      {"default (1) { 7 }", {}, {}, "7", 1},  // nor is one that is always true
      {"default (0 || 2) { 7 }", {}, {}, "7", 1},
      // The one without a condition is what is left, wherever it is.
      {"default { 7 } default (mode == 1) { 8 }", {}, {{"mode", "1"}}, "8", 0, {"mode"}},
      {"default { 7 } default (mode == 1) { 8 }", {}, {{"mode", "2"}}, "7", 1, {"mode"}},
      {"default (mode) { 8 } default (lock) { 9 }",
       {},
       {{"mode", "1"}, {"lock", "1"}},
       "8",
       0,
       {"mode", "lock"}},
      {"default (mode) { \"8\" } default (lock) { 9 }",
       {},
       {{"mode", "0"}, {"lock", "1"}},
       "9",
       0,
       {"mode", "lock"}},
      // A name is asked, also where the constants beside it would decide without.
      {"default { (7 || lock) }", {}, {{"lock", "0"}}, "1", 0, {"lock"}},
      {"default { (7 || lock) }", {}, {}, "7", 0, {"lock"}},
      {"default (mode) { (lock && 0) }", {}, {{"mode", "1"}}, "0", 0, {"mode", "lock"}},
      {"default (mode) { (lock + 1) }",
       {},
       {{"mode", "1"}, {"lock", "4"}},
       "5",
       0,
       {"mode", "lock"}},
      {"default (mode) { (X + 1) }", {{"X", "3"}}, {{"mode", "1"}}, "4", 0, {"mode"}},
      {"default { (lock + 1) } default (mode) { 8 }",
       {},
       {{"mode", "1"}, {"lock", "4"}},
       "8",
       0,
       {"lock", "mode"}},
      {"default { (lock + 1) } default (mode) { 8 }",
       {},
       {{"mode", "0"}, {"lock", "4"}},
       "5",
       0,
       {"lock", "mode"}},
      // Product variants: one that is on wins over what follows and over the fallback.
      {"default { 7 } default (X) { 8 } default (mode) { 9 }",
       {{"X", "1"}},
       {{"mode", "1"}},
       "8",
       0,
       {"mode"}},
      {"default (mode) { 9 } default (X) { 8 }", {{"X", "1"}}, {{"mode", "1"}}, "9", 0, {"mode"}},
      {"default (X) { (lock) }", {{"X", "1"}}, {{"lock", "3"}}, "3", 0, {"lock"}},
      {"default { 7 } default (X) { 8 }", {{"X", "0"}}, {}, "7", 1},
      {"default { 7 } default (X) { (1 / 0) } default (X) { (nobody) }", {{"X", "0"}}, {}, "7", 1},
      {"default (X) { 8 } default (X) { 9 } default { 7 }", {{"X", "1"}}, {}, "8", 0},
      {"default (mode == X) { 8 } default (mode == X) { 9 }",
       {{"X", "1"}},
       {{"mode", "1"}, {"X", "1"}},
       "8",
       0,
       {"mode", "X"}},
  };
  for (const DefaultCase& c : cases) {
    SCOPED_TRACE(c.statements);
    const BuiltText built("p rw { " + std::string(c.statements) + " } mode rw { } lock rw { }\n",
                          c.constants);
    EXPECT_EQ(built.result, 0);
    EXPECT_EQ(built.diagnostics, "");
    const ParmDef& parm = built.parm("p");
    std::string value = "unset";
    EXPECT_EQ(parm.defaultValue(value, situationOf(parm, c.situation)), c.result);
    EXPECT_EQ(value, c.value);
    EXPECT_EQ(namesOf(parm.variables()), c.variables);
  }
}

TEST(BuildDefaults, WarnsAboutAConditionThatIsAlwaysZero) {
  const std::string text =
      "p rw {\n"
      "  default (1 > 2) { (1 / 0) }\n"  // what is dropped is not looked at
      "  default { 7 }\n"
      "}\n";
  expectReports({{text,
                  {},
                  0,
                  "Warning on line 2\n"
                  "Conditional evaluates to 0.\n"
                  "  default (1 > 2) { (1 / 0) }\n"
                  "           ^\n"}});
  const BuiltText built(text);
  std::string value;
  EXPECT_EQ(built.parm("p").defaultValue(value, situationOf(built.parm("p"), {})), 1);
  EXPECT_EQ(value, "7");
}

TEST(BuildDefaults, ReportsSeveralWithoutACondition) {
  expectReports({
      {"p rw {\n  default { 1 }\n  default {  2 }\n  default { 1 }\n}\n",
       {},
       -1,
       "Error on line 3\n"
       "Multiple instances of conditional evaluating to non-0.\n"
       "  default {  2 }\n"
       "             ^\n"
       "Error on line 4\n"
       "Multiple instances of conditional evaluating to non-0.\n"
       "  default { 1 }\n"
       "            ^\n"},
      {"p rw {\n  default { \"a\" }\n  default (2 > 1) { \"b\" }\n}\n",
       {},
       -1,
       "Error on line 3\n"
       "Multiple instances of conditional evaluating to non-0.\n"
       "  default (2 > 1) { \"b\" }\n"
       "           ^\n"},
      {"p rw {\n  default { (p) }\n  default { 2 }\n}\n",
       {},
       -1,
       "Error on line 3\n"
       "Multiple instances of conditional evaluating to non-0.\n"
       "  default { 2 }\n"
       "            ^\n"},
      {"i index {\n  default { 1 }\n  default { 2 }\n}\n",
       {},
       -1,
       "Error on line 3\n"
       "Multiple instances of conditional evaluating to non-0.\n"
       "  default { 2 }\n"
       "            ^\n"},
  });
}

TEST(BuildDefaults, ReportsEqualRunTimeConditions) {
  expectReports({
      {"p rw {\n"
       "  default (p == 1) { 10 }\n"
       "  default (q == 1) { 15 }\n"
       "  default ( p==0x1 ) { 20 }\n"  // token for token
       "  default (p == 1) { 30 }\n"
       "}\n"
       "q rw { }\n",
       {},
       -1,
       "Error on line 4\n"
       "Duplicate conditionals.\n"
       "  default ( p==0x1 ) { 20 }\n"
       "            ^\n"
       "Error on line 5\n"
       "Duplicate conditionals.\n"
       "  default (p == 1) { 30 }\n"
       "           ^\n"},
      // Each differs from the others in one token.
      {"p rw {\n"
       "  default (p == 1) { 1 } default (p != 1) { 2 } default (p == 2) { 3 }\n"
       "  default (q == 1) { 4 } default (p == \"1\") { 5 } default (p) { 6 }\n"
       "  default ((p) == 1) { 7 } default (p == 1 + 0) { 8 } default (1 == p) { 9 }\n"
       "}\n"
       "q rw { }\n",
       {},
       0,
       ""},
  });
}

TEST(BuildDefaults, ReportsWhatIsNoExpression) {
  expectReports({
      {"p rw { default { () } }\n",
       {},
       -1,
       "Error on line 1\n"
       "Invalid expression.\n"
       "p rw { default { () } }\n"
       "                 ^\n"},
      {"p rw { default { (p 1) } }\n",
       {},
       -1,
       "Error on line 1\n"
       "Invalid expression.\n"
       "p rw { default { (p 1) } }\n"
       "                    ^\n"},
      {"p rw { default (p) { (1 / 0) } }\n",
       {},
       -1,
       "Error on line 1\n"
       "Invalid expression.\n"
       "p rw { default (p) { (1 / 0) } }\n"
       "                      ^\n"},
      {"p rw { default (X) { (X / 0) } }\n",
       {{"X", "1"}},
       -1,
       "Error on line 1\n"
       "Invalid expression.\n"
       "p rw { default (X) { (X / 0) } }\n"
       "                      ^\n"},
      // A condition that cannot be evaluated drops the statement with its value.
      {"p rw { default (1 / 0) { (1 2) } }\n",
       {},
       -1,
       "Error on line 1\n"
       "Invalid expression.\n"
       "p rw { default (1 / 0) { (1 2) } }\n"
       "                ^\n"},
      {"p rw { default (+) { 1 } default { 2 } }\n",
       {},
       -1,
       "Error on line 1\n"
       "Invalid expression.\n"
       "p rw { default (+) { 1 } default { 2 } }\n"
       "                ^\n"},
  });
}

}  // namespace
