#include "sw/parm/build/build_conditions.h"

#include <gtest/gtest.h>

#include "tests/support/build.h"
#include "tests/support/names.h"

namespace {

struct AccessCase {
  std::string_view access;
  AccessMode mode;
  bool readOnly;
};

TEST(BuildConditions, GivesTheModeAndReadOnlynessOfTheAccessWord) {
  const AccessCase cases[] = {
      {"rw", MODE_NORMAL, false},
      {"ro", MODE_NORMAL, true},
      {"rostrict", MODE_ROSTRICT, true},
      {"wo", MODE_WRITE_ONLY, false},
  };
  for (const AccessCase& c : cases) {
    SCOPED_TRACE(c.access);
    const BuiltText built("p " + std::string(c.access) + " { }\n");
    EXPECT_EQ(built.result, 0);
    EXPECT_EQ(built.diagnostics, "");
    EXPECT_EQ(built.parm("p").mode(), c.mode);
    EXPECT_EQ(accessText(built.parm("p").access()), c.access);
    EXPECT_EQ(built.parm("p").isReadOnly(situationOf(built.parm("p"), {})), c.readOnly);
    EXPECT_TRUE(built.parm("p").isAvailable(situationOf(built.parm("p"), {})));
    EXPECT_TRUE(built.parm("p").variables().empty());
  }
}

struct ControlCase {
  std::string_view statements;
  TestRegistry::Constants constants;
  Texts situation;
  bool holds;
  std::vector<std::string> variables;
};

TEST(BuildConditions, KeepsReadOnlyConditions) {
  const ControlCase cases[] = {
      {"ctrlRO (mode == 2)", {}, {{"mode", "2"}}, true, {"mode"}},
      {"ctrlRO (mode == 2)", {}, {{"mode", "1"}}, false, {"mode"}},
      {"ctrlRO (mode == 2) ctrlRO (lock)",
       {},
       {{"mode", "1"}, {"lock", "1"}},
       true,
       {"mode", "lock"}},
      {"ctrlRO (1)", {}, {}, true, {}},
      {"ctrlRO (0)", {}, {}, false, {}},
      {"ctrlRO (0 && lock)", {}, {}, false, {}},
      {"ctrlRO (X)", {{"X", "1"}}, {}, true, {}},
      {"ctrlRO (X)", {{"X", "0"}}, {}, false, {}},
      {"ctrlRO (mode == X)", {{"X", "2"}}, {{"mode", "2"}, {"X", "2"}}, true, {"mode", "X"}},
  };
  for (const ControlCase& c : cases) {
    SCOPED_TRACE(c.statements);
    const BuiltText built("p rw { " + std::string(c.statements) + " } mode rw { } lock rw { }\n",
                          c.constants);
    EXPECT_EQ(built.result, 0);
    EXPECT_EQ(built.diagnostics, "");
    const ParmDef& parm = built.parm("p");
    EXPECT_EQ(parm.isReadOnly(situationOf(parm, c.situation)), c.holds);
    EXPECT_EQ(namesOf(parm.variables()), c.variables);
    EXPECT_EQ(parm.mode(), MODE_NORMAL);
  }
}

TEST(BuildConditions, KeepsValidityConditions) {
  const ControlCase cases[] = {
      {"ctrlValid (mode == 2)", {}, {{"mode", "2"}}, true, {"mode"}},
      {"ctrlValid (mode == 2)", {}, {{"mode", "1"}}, false, {"mode"}},
      {"ctrlValid (mode == 2) ctrlValid (lock)",
       {},
       {{"mode", "2"}, {"lock", "0"}},
       false,
       {"mode", "lock"}},
      {"ctrlValid (1)", {}, {}, true, {}},
      {"ctrlValid (X)", {{"X", "1"}}, {}, true, {}},
  };
  for (const ControlCase& c : cases) {
    for (const char* access : {"rw", "index"}) {
      SCOPED_TRACE(std::string(c.statements) + access);
      const BuiltText built("p " + std::string(access) + " { " + std::string(c.statements) +
                                " } mode rw { } lock rw { }\n",
                            c.constants);
      EXPECT_EQ(built.result, 0);
      EXPECT_EQ(built.diagnostics, "");
      const IndexDef& definition =
          access[0] == 'i' ? built.index("p") : static_cast<const IndexDef&>(built.parm("p"));
      EXPECT_EQ(definition.isAvailable(situationOf(definition, c.situation)), c.holds);
      EXPECT_EQ(namesOf(definition.variables()), c.variables);
    }
  }
}

TEST(BuildConditions, MakesNeverValidByAConstantZero) {
  for (const char* access : {"rw", "ro", "rostrict", "wo"}) {
    SCOPED_TRACE(access);
    const BuiltText built("p " + std::string(access) + " { ctrlValid (1) ctrlValid (X) }\n",
                          {{"X", "0"}});
    EXPECT_EQ(built.result, 0);
    EXPECT_EQ(built.diagnostics, "");  // a product variant is switched off
    EXPECT_EQ(built.parm("p").mode(), MODE_NEVER);
    EXPECT_FALSE(built.parm("p").isAvailable(situationOf(built.parm("p"), {})));
  }
  const BuiltText built("i index { ctrlValid (X) rangeValid { 1..2 } }\n", {{"X", "0"}});
  EXPECT_EQ(built.diagnostics, "");
  EXPECT_FALSE(built.index("i").isAvailable(situationOf(built.index("i"), {})));
}

TEST(BuildConditions, WarnsAboutAConditionThatIsAlwaysZero) {
  const std::string text =
      "p rw {\n"
      "  ctrlValid (  1 > 2)\n"
      "}\n";
  expectReports({{text,
                  {},
                  0,
                  "Warning on line 2\n"
                  "Conditional evaluates to 0.\n"
                  "  ctrlValid (  1 > 2)\n"
                  "               ^\n"},
                 {"i index { ctrlValid (0 && i) }\n",
                  {},
                  0,
                  "Warning on line 1\n"
                  "Conditional evaluates to 0.\n"
                  "i index { ctrlValid (0 && i) }\n"
                  "                     ^\n"}});
  EXPECT_EQ(BuiltText(text).parm("p").mode(), MODE_NEVER);
}

TEST(BuildConditions, ComparesTheConstantOnesOfAKind) {
  expectReports({
      {"p rw {\n  ctrlRO (0)\n  ctrlRO (1 > 2)\n}\n",
       {},
       0,
       "Warning on line 3\n"
       "Multiple instances of conditional evaluating to 0.\n"
       "  ctrlRO (1 > 2)\n"
       "          ^\n"},
      {"p rw {\n  ctrlRO (1)\n  ctrlRO (2 > 1)\n}\n",
       {},
       0,
       "Warning on line 3\n"
       "Multiple instances of conditional evaluating to non-0.\n"
       "  ctrlRO (2 > 1)\n"
       "          ^\n"},
      {"p rw {\n  ctrlRO (0)\n  ctrlRO (1)\n}\n",
       {},
       -1,
       "Error on line 3\n"
       "Conflicting conditionals.\n"
       "  ctrlRO (1)\n"
       "          ^\n"},
      {"p rw {\n  ctrlRO (1)\n  ctrlRO (0)\n}\n",
       {},
       -1,
       "Error on line 3\n"
       "Conflicting conditionals.\n"
       "  ctrlRO (0)\n"
       "          ^\n"},
      // A condition of either class: it is compared with its own.
      {"p rw { ctrlRO (0)\n ctrlRO (1)\n ctrlRO (0)\n ctrlRO (1) }\n",
       {},
       -1,
       "Error on line 2\n"
       "Conflicting conditionals.\n"
       " ctrlRO (1)\n"
       "         ^\n"
       "Warning on line 3\n"
       "Multiple instances of conditional evaluating to 0.\n"
       " ctrlRO (0)\n"
       "         ^\n"
       "Warning on line 4\n"
       "Multiple instances of conditional evaluating to non-0.\n"
       " ctrlRO (1) }\n"
       "         ^\n"},
      {"p rw {\n  ctrlValid (1)\n  ctrlValid (\"yes\")\n}\n",
       {},
       0,
       "Warning on line 3\n"
       "Multiple instances of conditional evaluating to non-0.\n"
       "  ctrlValid (\"yes\")\n"
       "             ^\n"},
      {"p rw {\n  ctrlValid (0)\n  ctrlValid (\"\")\n}\n",
       {},
       0,
       "Warning on line 2\n"
       "Conditional evaluates to 0.\n"
       "  ctrlValid (0)\n"
       "             ^\n"
       "Warning on line 3\n"
       "Conditional evaluates to 0.\n"
       "  ctrlValid (\"\")\n"
       "             ^\n"
       "Warning on line 3\n"
       "Multiple instances of conditional evaluating to 0.\n"
       "  ctrlValid (\"\")\n"
       "             ^\n"},
      {"p rw {\n  ctrlValid (0)\n  ctrlValid (1)\n}\n",
       {},
       -1,
       "Warning on line 2\n"
       "Conditional evaluates to 0.\n"
       "  ctrlValid (0)\n"
       "             ^\n"
       "Error on line 3\n"
       "Conflicting conditionals.\n"
       "  ctrlValid (1)\n"
       "             ^\n"},
      {"i index {\n  ctrlRO (1)\n  ctrlRO (1)\n}\n",
       {},
       0,
       "Warning on line 3\n"
       "Multiple instances of conditional evaluating to non-0.\n"
       "  ctrlRO (1)\n"
       "          ^\n"},
  });
}

TEST(BuildConditions, DoesNotCompareWhatTellsVariantsApart) {
  expectReports({
      {"p rw { ctrlRO (X) ctrlRO (Y) ctrlRO (1) ctrlRO (X == 0) }\n",
       {{"X", "1"}, {"Y", "0"}},
       0,
       ""},
      {"p rw { ctrlValid (X) ctrlValid (Y) ctrlValid (X == 0) ctrlValid (1) }\n",
       {{"X", "1"}, {"Y", "0"}},
       0,
       ""},
      {"p rw { ctrlRO (0) ctrlValid (1) }\n", {}, 0, ""},          // of different kinds
      {"p rw { ctrlRO (p) ctrlRO (p) ctrlRO (1) }\n", {}, 0, ""},  // not constant
  });
}

TEST(BuildConditions, ReportsWhatIsNoExpression) {
  expectReports({
      {"p rw { ctrlRO ( ) }\n", {}, -1, "Error\nInvalid expression. Parameter is \"p\"\n"},
      {"i index { ctrlValid () }\n", {}, -1, "Error\nInvalid expression. Parameter is \"i\"\n"},
      {"p rw { ctrlRO (p +)\n ctrlRO (p) }\n",
       {},
       -1,
       "Error on line 1\n"
       "Invalid expression.\n"
       "p rw { ctrlRO (p +)\n"
       "                 ^\n"},
      {"p rw { ctrlRO (X %\n 0) ctrlValid (1 / 0) }\n",
       {{"X", "1"}},
       -1,
       "Error on line 1\n"
       "Invalid expression.\n"
       "p rw { ctrlRO (X %\n"
       "               ^\n"
       "Error on line 2\n"
       "Invalid expression.\n"
       " 0) ctrlValid (1 / 0) }\n"
       "               ^\n"},
  });
}

// The access word of the second body counts, so the first may have brought a condition.
TEST(BuildConditions, NeverMakesAWriteOnlyParameterReadOnly) {
  const BuiltText built("p rw { ctrlRO (1) }\np wo { }\n");
  EXPECT_EQ(built.diagnostics, "");
  EXPECT_EQ(built.parm("p").mode(), MODE_WRITE_ONLY);
  EXPECT_FALSE(built.parm("p").isReadOnly(situationOf(built.parm("p"), {})));
}

}  // namespace
