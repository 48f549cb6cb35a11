#include "sw/parm/build/build_ranges.h"

#include <gtest/gtest.h>

#include "tests/support/build.h"
#include "tests/support/names.h"

namespace {

using Lines = std::vector<std::string>;

struct RangeCase {
  std::string_view statements;
  Texts situation;
  std::string base;
  Lines conditional = {};  // in that situation, run-time ranges with a "="
  Lines variables = {};
};

// The statements of a parameter and of an index, beside the parameters "mode" and "lo", with the
// constants ON = 1, OFF = 0, TEN = 10 and WORD = x.
BuiltText buildRanges(std::string_view access, std::string_view statements) {
  return BuiltText(
      "p " + std::string(access) + " { " + std::string(statements) + " } mode rw { } lo rw { }\n",
      {{"ON", "1"}, {"OFF", "0"}, {"TEN", "10"}, {"WORD", "x"}});
}

void expectRanges(const std::vector<RangeCase>& cases) {
  for (const RangeCase& c : cases) {
    SCOPED_TRACE(c.statements);
    for (const std::string_view access : {"rw", "index"}) {
      const BuiltText built = buildRanges(access, c.statements);
      EXPECT_EQ(built.result, 0);
      EXPECT_EQ(built.diagnostics, "");
      EXPECT_EQ(built.errors, "");
      const IndexDef& definition =
          access == "rw" ? static_cast<const IndexDef&>(built.parm("p")) : built.index("p");
      EXPECT_EQ(itemsText(definition.baseBounds()), c.base);
      EXPECT_EQ(conditionalTexts(definition, c.situation), c.conditional);
      EXPECT_EQ(namesOf(definition.variables()), c.variables);
    }
  }
}

TEST(BuildRangeValid, GathersConstantsInTheBaseBounds) {
  expectRanges({
      {"", {}, ""},
      {"rangeValid { }", {}, ""},
      {"rangeValid { 7 }", {}, "7"},
      {"rangeValid { 5..5 }", {}, "5"},
      {"rangeValid { 0..3, 10..12 }", {}, "0..3, 10..12"},
      {"rangeValid { 10..12 } rangeValid { 0..3, 4 }", {}, "0..4, 10..12"},
      {"rangeValid { -0x10..010 }", {}, "-16..8"},
      {"rangeValid { \"off\", \"auto\" } rangeValid { 1..2, \"on\" }",
       {},
       "1..2, \"off\", \"auto\", \"on\""},
      {"rangeValid { \"7\", \"\t\" }", {}, "\"7\", \"\t\""},           // a quoted text is no number
      {"rangeValid { (\"7\"), (\"a\"), (\"\") }", {}, "0, 7, \"a\""},  // a computed text may be one
      {"rangeValid { (2 * 3)..(TEN), (\"a\" + 1) }", {}, "6..10, \"a1\""},
      {"rangeValid { (WORD), (TEN) }", {}, "10, \"x\""},
      {"rangeValid () { 1 }", {}, "1"},
      {"rangeValid (1) { 1 }", {}, "1"},
      {"rangeValid (0 || 2) { 1 } rangeValid (ON) { 3 }", {}, "1, 3"},
      {"rangeValid (WORD) { 1 }", {}, "1"},
  });
}

TEST(BuildRangeValid, LeavesOutWhatAVariantSwitchesOff) {
  expectRanges({
      {"rangeValid (OFF) { 1 }", {}, ""},
      {"rangeValid (OFF && mode) { 1 } rangeValid { 3 }", {}, "3"},
      // Nothing inside is examined or referenced.
      {"rangeValid (TEN == 9) { 9..0, \"\", (1 / 0), (nobody), (lo), () } rangeValid { 3 }",
       {},
       "3"},
  });
}

TEST(BuildRangeValid, KeepsConditionsInStatementOrder) {
  expectRanges({
      {"rangeValid (mode == 1) { 0..9 } rangeValid { 0..99 } rangeValid (mode > 0) { \"a\", 7 }",
       {{"mode", "1"}},
       "0..99",
       {"0..9", "7, \"a\""},
       {"mode"}},
      {"rangeValid (mode == 1) { 0..9 } rangeValid (mode > 0) { 7 }",
       {{"mode", "2"}},
       "",
       {"off", "7"},
       {"mode"}},
      {"rangeValid (mode) { }", {{"mode", "1"}}, "", {""}, {"mode"}},
      {"rangeValid (mode == TEN) { (TEN) }",
       {{"mode", "10"}, {"TEN", "10"}},
       "",
       {"10"},
       {"mode", "TEN"}},
  });
}

TEST(BuildRangeValid, ComputesRunTimeItems) {
  expectRanges({
      {"rangeValid (mode) { (lo)..(TEN + lo) }",
       {{"mode", "1"}, {"lo", "3"}, {"TEN", "10"}},
       "",
       {"= 3..13"},
       {"mode", "lo", "TEN"}},
      // One computed item makes the statement a run-time one, its constants included.
      {"rangeValid (mode) { \"7\", (\"8\"), 20..30, (lo), \"a\" }",
       {{"mode", "1"}, {"lo", "3"}},
       "",
       {"= 3, 8, 20..30, \"7\", \"a\""},
       {"mode", "lo"}},
      {"rangeValid { 0..(lo) }", {{"lo", "3"}}, "", {"= 0..3"}, {"lo"}},
      // A name is asked, also where the constants beside it would decide without.
      {"rangeValid { (lo || 9) }", {{"lo", "3"}}, "", {"= 1"}, {"lo"}},
      {"rangeValid { (lo || 9) }", {}, "", {"= 9"}, {"lo"}},
      {"rangeValid { (lo && 0)..9 }", {{"lo", "3"}}, "", {"= 0..9"}, {"lo"}},
      {"rangeValid { (lo)..9 }", {{"lo", "3"}}, "", {"= 3..9"}, {"lo"}},
      {"rangeValid { (lo) }", {{"lo", "auto"}}, "", {"= \"auto\""}, {"lo"}},
      {"rangeValid { 0..(lo) }", {{"lo", "-1"}}, "", {"= -5"}, {"lo"}},
      {"rangeValid { 0..(lo) }", {}, "", {"= -4"}, {"lo"}},
      {"rangeValid { (lo)..9 }", {}, "", {"= -2"}, {"lo"}},
      {"rangeValid { (lo)..(sw::this) }", {{"lo", "1"}}, "", {"= -4"}, {"lo", "sw::this"}},
      {"rangeValid { 0..(vidStd::mode::spal) }", {}, "", {"= -4"}, {"vidStd::mode::spal"}},
  });
}

// The statements without a condition are one set.
TEST(BuildRangeValid, JoinsTheStatementsWithoutACondition) {
  expectRanges({
      {"rangeValid { 20..30 } rangeValid { 0..(lo) }",
       {{"lo", "3"}},
       "20..30",
       {"= 0..3, 20..30"},
       {"lo"}},
      {"rangeValid { 0..(lo) } rangeValid { 20..30 }",
       {{"lo", "3"}},
       "20..30",
       {"= 0..3, 20..30"},
       {"lo"}},
      // The constants of a statement with a run-time item are not in the base bounds.
      {"rangeValid { \"a\", (lo) } rangeValid { \"b\" } rangeValid { \"c\", (mode) }",
       {{"lo", "3"}, {"mode", "5"}},
       "\"b\"",
       {"= 3, 5, \"a\", \"b\", \"c\""},
       {"lo", "mode"}},
      // Items are in statement order: the first text corrects.
      {"rangeValid { \"b\" } rangeValid { \"a\", (lo) }",
       {{"lo", "3"}},
       "\"b\"",
       {"= 3, \"b\", \"a\""},
       {"lo"}},
      // The place is that of the first statement with a run-time item.
      {"rangeValid { 1 } rangeValid (mode) { 2 } rangeValid { (lo) } rangeValid (mode) { 4 } "
       "rangeValid { (lo + 1) }",
       {{"mode", "1"}, {"lo", "7"}},
       "1",
       {"2", "= 1, 7..8", "4"},
       {"mode", "lo"}},
      {"rangeValid { (lo) } rangeValid (mode) { 2 } rangeValid { 1 }",
       {{"mode", "1"}, {"lo", "7"}},
       "1",
       {"= 1, 7", "2"},
       {"lo", "mode"}},
      {"rangeValid (mode) { (lo) } rangeValid { 1 }",  // a conditional one joins nobody
       {{"mode", "1"}, {"lo", "7"}},
       "1",
       {"= 7"},
       {"mode", "lo"}},
      {"rangeValid (ON) { (lo) } rangeValid (OFF) { 3 } rangeValid (1) { 1 }",
       {{"lo", "7"}},
       "1",
       {"= 1, 7"},
       {"lo"}},
  });
}

TEST(BuildRangeValid, MakesRunTimeRangesThatTheDefinitionKnows) {
  const BuiltText built = buildRanges("rw", "rangeValid (mode) { 1 } rangeValid { (lo) }");
  const ParmDef& parm = built.parm("p");
  ASSERT_EQ(parm.conditionalBounds().size(), 2U);
  EXPECT_EQ(parm.conditionalBounds()[0].computed, nullptr);
  EXPECT_EQ(parm.conditionalBounds()[1].computed, parm.conditionalBounds()[1].bounds.get());
  EXPECT_TRUE(parm.hasRunTimeRanges());
}

struct DocumentedCase {
  std::string_view statements;
  Texts situation;
  std::string range;  // what a range query finds
  Lines variables = {};
};

TEST(BuildRangeDoc, AnswersRangeQueriesFirst) {
  const DocumentedCase cases[] = {
      {"rangeValid { 0..9 } rangeDoc { 0..3 }", {}, "0..3"},
      {"rangeDoc { 0..3 } rangeDoc { 7, \"a\" }", {}, "0..3, 7, \"a\""},
      {"rangeValid { 0..9 } rangeDoc { }", {}, ""},
      {"rangeValid (1) { 0..9 } rangeDoc (OFF) { 0..3, () }", {}, "0..9"},
      {"rangeDoc (ON) { 0..3 } rangeValid { 0..9 }", {}, "0..3"},
      // Those with a condition come before all others.
      {"rangeDoc { 0..3 } rangeDoc (mode == 1) { 1 } rangeDoc (mode) { 2 }",
       {{"mode", "1"}},
       "1",
       {"mode"}},
      {"rangeDoc { 0..3 } rangeDoc (mode == 1) { 1 } rangeDoc (mode) { 2 }",
       {{"mode", "5"}},
       "2",
       {"mode"}},
      {"rangeDoc { 0..3 } rangeDoc (mode == 1) { 1 } rangeDoc (mode) { 2 }",
       {{"mode", "0"}},
       "0..3",
       {"mode"}},
      {"rangeDoc (mode) { 0..(lo) } rangeValid { 0..9 }",
       {{"mode", "1"}, {"lo", "4"}},
       "0..4",
       {"mode", "lo"}},
      {"rangeDoc (mode) { 0..(lo) } rangeValid { 0..9 }",
       {{"mode", "0"}, {"lo", "4"}},
       "0..9",
       {"mode", "lo"}},
      {"rangeDoc { \"7\", 8 } rangeDoc { 0..(lo) }", {{"lo", "4"}}, "0..4, 8, \"7\"", {"lo"}},
      {"rangeDoc { 0..(lo) } rangeValid { 0..9 }", {{"lo", "-1"}}, "-5", {"lo"}},
      {"rangeValid { 0..(lo) } rangeValid (mode) { 1 }",
       {{"lo", "4"}, {"mode", "1"}},
       "0..4",
       {"lo", "mode"}},
  };
  for (const DocumentedCase& c : cases) {
    SCOPED_TRACE(c.statements);
    const BuiltText built = buildRanges("rw", c.statements);
    EXPECT_EQ(built.result, 0);
    EXPECT_EQ(built.diagnostics, "");
    EXPECT_EQ(rangeText(built.parm("p"), c.situation), c.range);
    EXPECT_EQ(namesOf(built.parm("p").variables()), c.variables);
  }
}

TEST(BuildRangeDoc, NeverConstrains) {
  const BuiltText built = buildRanges("rw", "rangeDoc { 0..3 } rangeDoc (mode) { (lo) }");
  const ParmDef& parm = built.parm("p");
  EXPECT_EQ(itemsText(parm.baseBounds()), "");
  EXPECT_TRUE(parm.conditionalBounds().empty());
  EXPECT_FALSE(parm.hasRunTimeRanges());
}

TEST(BuildRangeDoc, LeavesNothingInAnIndex) {
  const BuiltText built = buildRanges(
      "index", "rangeDoc (mode) { (lo) } ctrlRO (mode) default (mode) { (lo) } default { (lo) }");
  EXPECT_EQ(built.result, 0);
  EXPECT_EQ(built.diagnostics, "");
  EXPECT_TRUE(built.index("p").variables().empty());
}

// What a rangeValid statement reports, a rangeDoc statement reports alike: "@" means either.
void expectRangeReports(const std::vector<ReportCase>& cases) {
  const auto replaced = [](std::string_view text, std::string_view keyword) {
    std::string result(text);
    for (size_t at = result.find('@'); at != result.npos; at = result.find('@')) {
      result.replace(at, 1, keyword);
    }
    return result;
  };
  for (const ReportCase& c : cases) {
    // Both keywords and blanks to the same width, so that the caret is right under both.
    for (const std::string_view keyword : {"rangeValid", "rangeDoc  "}) {
      const std::string text = replaced(c.text, keyword);
      const std::string diagnostics = replaced(c.diagnostics, keyword);
      expectReports({{text, c.constants, c.result, diagnostics, c.errors}});
    }
  }
}

TEST(BuildRanges, ReportConditionsThatAreAlwaysZero) {
  expectRangeReports({
      {"p rw {\n  @ ( 1 > 2) { 9..0 }\n}\n",  // what is left out is not looked at
       {},
       -1,
       "Warning on line 2\n"
       "Conditional evaluates to 0.\n"
       "  @ ( 1 > 2) { 9..0 }\n"
       "               ^\n"},
      {"i index { @ (\"\") { 1 } }\n",
       {},
       -1,
       "Warning on line 1\n"
       "Conditional evaluates to 0.\n"
       "i index { @ (\"\") { 1 } }\n"
       "                      ^\n"},
      {"p rw { @ (p && 0) { 1 } @ (X) { 1 } }\n",
       {{"X", "0"}},
       -1,
       "Warning on line 1\n"
       "Conditional evaluates to 0.\n"
       "p rw { @ (p && 0) { 1 } @ (X) { 1 } }\n"
       "                   ^\n"},
  });
}

TEST(BuildRanges, ReportItemsThatAreNoRange) {
  const auto invalid = [](std::string_view line, size_t column) {
    return "Error on line 1\nInvalid range specifier. Parameter is \"p\"\n" + std::string(line) +
           std::string(column, ' ') + "^\n";
  };
  struct Case {
    std::string item;
    size_t column = 0;  // from the item's start
  };
  const Case cases[] = {
      {"9..0"},
      {"\"\""},
      {"()"},
      {"( )..9"},
      {"0..()"},
      {"(\"a\")..9"},
      {"0..(\"a\")"},
      {"(\"1\")..9"},
      {"0..(\"9\")"},
      {"(X)..0"},
      {"0..(W)"},
      {"(W)..9"},
      {"(\"a\")..(p)"},
      {"(p)..(\"a\")"},
      {"(p)..()"},
      {"(5)..(2 * 2)"},
      {"2147483647..-2147483648"},
  };
  for (const Case& c : cases) {
    const std::string start = "p rw { @ { 3, ";
    const std::string line = start + c.item + " } }\n";
    // The keyword that replaces "@" has ten characters.
    const std::string report = invalid(line, start.size() + 9);
    expectRangeReports({{line, {{"X", "1"}, {"W", "w"}}, -1, report}});
  }
}

TEST(BuildRanges, AcceptEndsThatMeet) {
  expectRangeReports({
      {"p rw { @ { 5..5, (X)..1, (p)..0, 0..(p), -2147483648..2147483647 } }\n",
       {{"X", "1"}},
       0,
       ""},
  });
}

TEST(BuildRanges, ReportEveryBadItemAndKeepTheOthers) {
  const std::string text =
      "p rw {\n"
      "  rangeValid { 9..0, 1, \"\", (1 / 0)..(2 3), 4 }\n"
      "}\n";
  expectReports({{text,
                  {},
                  -1,
                  "Error on line 2\n"
                  "Invalid range specifier. Parameter is \"p\"\n"
                  "  rangeValid { 9..0, 1, \"\", (1 / 0)..(2 3), 4 }\n"
                  "               ^\n"
                  "Error on line 2\n"
                  "Invalid range specifier. Parameter is \"p\"\n"
                  "  rangeValid { 9..0, 1, \"\", (1 / 0)..(2 3), 4 }\n"
                  "                        ^\n"
                  "Error on line 2\n"
                  "Invalid expression.\n"
                  "  rangeValid { 9..0, 1, \"\", (1 / 0)..(2 3), 4 }\n"
                  "                             ^\n"
                  "Error on line 2\n"
                  "Invalid expression.\n"
                  "  rangeValid { 9..0, 1, \"\", (1 / 0)..(2 3), 4 }\n"
                  "                                        ^\n"}});
  EXPECT_EQ(itemsText(BuiltText(text).parm("p").baseBounds()), "1, 4");
}

TEST(BuildRanges, ReportWhatIsNoExpression) {
  expectRangeReports({
      {"p rw { @ (1 / 0) { () } }\n",  // what is left out is not looked at
       {},
       -1,
       "Error on line 1\n"
       "Invalid expression.\n"
       "p rw { @ (1 / 0) { () } }\n"
       "                   ^\n"},
      {"p rw { @ (p ==) { 1 } }\n",
       {},
       -1,
       "Error on line 1\n"
       "Invalid expression.\n"
       "p rw { @ (p ==) { 1 } }\n"
       "                     ^\n"},
      {"p rw { @ { (p + )..9 } }\n",
       {},
       -1,
       "Error on line 1\n"
       "Invalid expression.\n"
       "p rw { @ { (p + )..9 } }\n"
       "                       ^\n"},
      {"p rw { @ { (X % 0) } }\n",
       {{"X", "1"}},
       -1,
       "Error on line 1\n"
       "Invalid expression.\n"
       "p rw { @ { (X % 0) } }\n"
       "                     ^\n"},
  });
}

TEST(BuildRanges, KeepNoNamesOfASpanThatIsRefused) {
  const BuiltText built("p rw { rangeValid { (lo)..(\"a\"), (lo)..(1 / 0) } } lo rw { }\n");
  EXPECT_TRUE(built.parm("p").variables().empty());
  EXPECT_TRUE(built.parm("p").conditionalBounds().empty());
}

// What a range with the present numbers written in would do to a value.
TEST(BuildRanges, JudgeQuotedNumbersAsWritten) {
  const BuiltText computed = buildRanges("rw", "rangeValid { \"7\", \"auto\", 20..(lo) }");
  const BuiltText written = buildRanges("rw", "rangeValid { \"7\", \"auto\", 20..30 }");
  const ParmDef& parm = computed.parm("p");
  BoundsParm present;
  ASSERT_EQ(parm.range(present, situationOf(parm, {{"lo", "30"}})), 0);
  for (const char* value : {"7", "auto", "20", "31", "0", "", "else", "07", "x"}) {
    SCOPED_TRACE(value);
    std::string fixed = value;
    std::string expected = value;
    EXPECT_EQ(present.check(fixed, true), written.parm("p").baseBounds().check(expected, true));
    EXPECT_EQ(fixed, expected);
  }
}

}  // namespace
