// What is said about texts that are read but not built: one row for each mistake.
#include "check/text/build_causes.h"

#include <gtest/gtest.h>

#include "tests/support/findings.h"
#include "vid_std.h"

namespace {

using Texts = std::vector<std::string>;

struct BuildCase {
  std::string text;
  Texts findings;
};

TEST(BuildCauses, OfStatements) {
  const std::string before =
      "channel index { rangeValid { 1..2 } }\n"
      "mode rw { rangeValid { \"film\", \"off\" } }\n"
      "level rw { index { channel } }\n"
      "standard rw { } user_lock rw { }\n";
  const BuildCase cases[] = {
      {"index { chanel }",
       {"6:9 error: there is no index \"chanel\" [undefined-index]", "6:9 meant: channel"}},
      {"index { nothing }", {"6:9 error: there is no index \"nothing\" [undefined-index]"}},
      {"index { \"channel\" }",
       {"6:9 error: the name of an index has no quotes [undefined-index]", "6:9 meant: channel"}},
      {"index { 1..4 }",
       {"6:9 error: an index statement has the names of indices, and no values: \"1..4\" "
        "[undefined-index]"}},
      {"ctrlRO (level[\"1\"])",
       {"6:9 error: an index value in brackets has no quotes [index-mismatch]",
        "1:1 note: defined here", "6:9 meant: level[1]"}},
      {"index { mode }",
       {"2:6 error: \"mode\" is used as an index, and defined as a parameter [not-an-index]",
        "6:9 note: used here", "2:6 meant: index"}},
      {"index { channel } index { channel }",
       {"6:19 warning: \"a\" has an index statement already: this one is passed over "
        "[second-index-list]",
        "6:1 note: the first one is here"}},
      {"ctrlRO (moed == 1)",
       {"6:9 error: there is no \"moed\" [undefined-name]", "6:9 meant: mode"}},
      {"ctrlRO (mode == film)",
       {"6:17 error: there is no \"film\": a text has to be in quotes [unquoted-text]",
        "6:17 meant: \"film\""}},
      {"ctrlRO (mode == film2)",
       {"6:17 error: there is no \"film2\" in the text: a constant is given by -D film2=..., and a "
        "text has to be in quotes "
        "[undefined-name]"}},
      {"ctrlRO (mode == 'film')",
       {"6:17 error: a text has to be in double quotes [unquoted-text]", "6:17 meant: \"film\""}},
      {"ctrlRO (mode == \u201Cfilm still\u201D)",
       {"6:17 error: a text has to be in double quotes [unquoted-text]",
        "6:17 meant: \"film still\""}},
      {"ctrlRO (user-lock == 1)",
       {"6:9 error: there is no \"user-lock\" [undefined-name]", "6:9 meant: user_lock"}},
      {"ctrlRO (mode == true)",
       {"6:17 error: there is no \"true\": a truth is 1 or 0 [undefined-name]", "6:17 meant: 1"}},
      {"ctrlRO (mode == 1..3)",
       {"6:17 error: \"1..3\" is no value: compare with both ends of the span, as in (a >= 1 && a "
        "<= 9) [undefined-name]"}},
      {"ctrlRO (mode == 1;)",
       {"6:17 error: \"1;\" is no name: an expression has no \";\" [undefined-name]"}},
      {"ctrlRO (mode in (1, 2))",
       {"6:14 error: there is no operator \"in\": compare with each, as in (a == 1 || a == 2) "
        "[invalid-expression]"}},
      {"ctrlRO (mode \u2265 3)",
       {"6:14 error: there is no operator \"\u2265\" [invalid-expression]", "6:14 meant: >="}},
      {"ctrlRO (mode ** 2)", {"6:14 error: there is no operator \"**\" [invalid-expression]"}},
      {"ctrlRO (level(1) == 2)",
       {"6:9 error: an index value is in brackets: level[...] [invalid-expression]"}},
      {"ctrlRO (LIMIT)",
       {"6:9 error: there is no \"LIMIT\": as a constant of the command line it is given by -D "
        "LIMIT=... [missing-constant]"}},
      {"ctrlRO (MODE)",
       {"6:9 error: there is no \"MODE\", nor is it given as a constant by -D MODE=... "
        "[undefined-name]",
        "6:9 meant: mode"}},
      {"ctrlRO (nothing)",
       {"6:9 error: there is no \"nothing\" in the text: a constant is given by -D nothing=..., "
        "and a text has to be in quotes "
        "[undefined-name]"}},
      {"ctrlRO (levl[1])",
       {"6:9 error: there is no \"levl\" [undefined-name]", "6:9 meant: level"}},
      {"ctrlRO (mode, 1)", {"6:9 error: an expression has no \",\" [invalid-expression]"}},
      {"ctrlRO (mode,)",
       {"6:9 error: \"mode,\" is no name: an expression has no \",\" [undefined-name]"}},
      {"ctrlRO (1.5)", {"6:9 error: \"1.5\" is no number: numbers are whole [undefined-name]"}},
      {"ctrlRO (12ab)",
       {"6:9 error: \"12ab\" is neither a number nor a name: a text has to be in quotes "
        "[undefined-name]"}},
      {"ctrlRO (08)",
       {"6:9 error: \"08\" is no number: with a leading 0 it is octal [undefined-name]"}},
      {"rangeValid { (0..9) }",
       {"6:15 error: \"0..9\" is no name: the dots of a span are outside of the parentheses, as in "
        "(a)..(b) [undefined-name]"}},
      {"rangeValid (mode # c\n) { 1 }",
       {"6:18 error: a comment has to be on a line of its own [comment-after-code]"}},
      {"rangeValid (# c\n) { 1 }",
       {"6:13 error: a comment has to be on a line of its own [comment-after-code]"}},
      {"ctrlRO (vidStd::standard::spall)",
       {"6:27 error: a video standard has no figure \"spall\" [unknown-figure]",
        "6:27 meant: spal"}},
      {"ctrlRO (vidStd::standrad::spal)",
       {"6:17 error: there is no \"standrad\" [undefined-name]", "6:17 meant: standard"}},
      {"ctrlRO (vidStd::spal)",
       {"6:9 error: \"vidStd::spal\" is no figure: its form is vidStd::P::F, where P is a "
        "parameter [unknown-figure]"}},
      {"ctrlRO (vidstd::standard::spal)",
       {"6:9 error: \"vidstd::standard::spal\" is no figure: its form is vidStd::P::F, where P is "
        "a "
        "parameter and F is spal [unknown-figure]",
        "6:9 meant: vidStd::standard::spal"}},
      {"ctrlRO (vidStd::standard::width)",
       {"6:27 error: a video standard has no figure \"width\": it has spal, alpf, sptl, tlpf, fr, "
        "clkDiv, f0, f1, f0v0, f0v1, f1v0, f1v1, f0sw or f1sw [unknown-figure]"}},
      {"ctrlRO (vidStd::SOURCE::spal)",
       {"6:17 error: there is no \"SOURCE\": as a constant of the command line it is given by -D "
        "SOURCE=... [missing-constant]"}},
      {"ctrlRO (level[1][2])",
       {"6:9 error: level has 1 index, 2 are given [index-mismatch]", "3:1 note: defined here"}},
      {"ctrlRO (mode[1])",
       {"6:9 error: mode has no indices, 1 is given [index-mismatch]", "2:1 note: defined here"}},
      {"ctrlRO (mode[\"film\"])",
       {"6:9 error: mode has no indices, 1 is given; a comparison with its value is written mode "
        "== "
        "\"film\" [index-mismatch]",
        "2:1 note: defined here"}},
      {"ctrlRO (level[3])",
       {"6:9 error: the index \"channel\" has no value \"3\": it has 1..2 [index-mismatch]",
        "1:1 note: defined here"}},
      {"ctrlRO (channel == 1)",
       {"6:9 error: \"a\" is not indexed by \"channel\" [index-mismatch]",
        "5:1 note: this definition has no index statement"}},
      {"ctrlRO (channel[1])",
       {"6:9 error: \"channel\" is an index, which has no indices itself [index-mismatch]"}},
      {"rangeValid (0) { 1 }",
       {"6:13 error: this condition is never true, and the daemon refuses a range that never "
        "applies [constant-condition]"}},
      {"rangeDoc (1 > 2) { 1 }",
       {"6:11 error: this condition is never true, and the daemon refuses a range that never "
        "applies [constant-condition]"}},
      {"default (0) { 1 }",
       {"6:10 warning: this condition is never true, so this default never counts "
        "[constant-condition]"}},
      {"ctrlValid (0)",
       {"6:12 warning: this condition is never true, so \"a\" is never available "
        "[constant-condition]"}},
      {"ctrlValid (0) ctrlValid (1 > 2)",
       {"6:12 warning: this condition is never true, so \"a\" is never available "
        "[constant-condition]",
        "6:26 warning: a second \"ctrlValid\" that is never true [repeated-condition]",
        "6:12 note: this one is never true"}},
      {"ctrlRO (0) ctrlRO (0)",
       {"6:20 warning: a second \"ctrlRO\" that is never true [repeated-condition]",
        "6:9 note: this one is never true"}},
      {"ctrlRO (1) ctrlRO (2)",
       {"6:20 warning: a second \"ctrlRO\" that is always true [repeated-condition]",
        "6:9 note: this one is always true"}},
      {"ctrlRO (1) ctrlRO (0)",
       {"6:20 error: this \"ctrlRO\" contradicts an earlier one: one is always true, one never "
        "[conflicting-conditions]",
        "6:9 note: this one is always true"}},
      {"ctrlValid (mode && 0) ctrlValid (1)",
       {"6:12 warning: this condition is never true, so \"a\" is never available "
        "[constant-condition]",
        "6:34 error: this \"ctrlValid\" contradicts an earlier one: one is always true, one never "
        "[conflicting-conditions]",
        "6:12 note: this one is never true"}},
      {"default { 1 } default { 2 }",
       {"6:25 error: \"a\" has a default that always applies already [same-condition]",
        "6:1 note: the first one is here"}},
      {"default (1) { 1 } default { 2 }",
       {"6:29 error: \"a\" has a default that always applies already [same-condition]",
        "6:1 note: the first one is here"}},
      {"default (mode) { 1 } default (mode) { 2 }",
       {"6:31 error: an earlier default has the same condition [same-condition]",
        "6:10 note: the earlier condition"}},
      {"valueChange { \"on\" -> 1 } valueChange { \"on\" -> 2 }",
       {"6:41 error: \"on\" becomes \"1\" already, and cannot become \"2\" [ambiguous-translation]",
        "6:15 note: the first translation"}},
      {"rangeValid { 9..0 }",
       {"6:14 error: a span goes upwards: 9 is above 0 [invalid-range]", "6:14 meant: 0..9"}},
      {"rangeValid { 5..(2 + 1) }",
       {"6:14 error: a span goes upwards: 5 is above 3 [invalid-range]"}},
      {"rangeValid { \"\" }", {"6:14 error: an item cannot be the empty text [invalid-range]"}},
      {"rangeValid { () }",
       {"6:14 error: there is nothing between these parentheses [invalid-range]"}},
      {"rangeValid { (\"a\")..9 }",
       {"6:14 error: the ends of a span are numbers, and no texts [invalid-range]"}},
      {"rangeValid { 0..() }",
       {"6:14 error: there is nothing between these parentheses [invalid-range]"}},
      {"default { () }",
       {"6:11 error: there is nothing between these parentheses [invalid-expression]"}},
      {"ctrlRO ()", {"6:1 error: the condition of \"ctrlRO\" is empty [invalid-expression]"}},
      {"ctrlValid ( )",
       {"6:1 error: the condition of \"ctrlValid\" is empty [invalid-expression]"}},
      {"ctrlRO (mode and 1)",
       {"6:14 error: there is no operator \"and\" [invalid-expression]", "6:14 meant: &&"}},
      {"ctrlRO (mode OR 1)",
       {"6:14 error: there is no operator \"OR\" [invalid-expression]", "6:14 meant: ||"}},
      {"ctrlRO (max(1 + 2))",
       {"6:9 error: there is no function \"max\", and an operator is missing behind a name "
        "[invalid-expression]"}},
      {"ctrlRO (mode 2)",
       {"6:14 error: an operator is missing between \"mode\" and \"2\" [invalid-expression]"}},
      {"ctrlRO (1 +)", {"6:11 error: a value is missing behind \"+\" [invalid-expression]"}},
      {"ctrlRO (* 1)", {"6:9 error: a value is missing before \"*\" [invalid-expression]"}},
      {"ctrlRO (1 + * 2)", {"6:13 error: a value is missing before \"*\" [invalid-expression]"}},
      {"ctrlRO (-mode)",
       {"6:9 error: a \"-\" makes a number negative only at the start of an expression or behind "
        "an operator: write it with a 0, as in (0 - a) [invalid-expression]"}},
      {"ctrlRO (1 + ())",
       {"6:14 error: there is nothing between these parentheses [invalid-expression]"}},
      {"ctrlRO (1 / 0)",
       {"6:9 error: this expression never has a value: it divides by 0 [invalid-expression]"}},
      {"ctrlRO (mode ? 1 : 2)",
       {"6:14 error: there is no operator \"?\": write one statement for each condition "
        "[invalid-expression]"}},
  };
  for (const BuildCase& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_EQ(detailedTexts(findingsOf(before + "a rw {\n" + c.text + "\n}\n")), c.findings);
  }
}

TEST(BuildCauses, OfIndices) {
  const BuildCase cases[] = {
      // The access word is wrong, wherever it is used.
      {"p rw { rangeValid { 1..2 } }\na rw { index { p } ctrlRO (p == 1) }\nb rw { index { p } }\n",
       {"1:3 error: \"p\" is used as an index, and defined as a parameter [not-an-index]",
        "2:16 note: used here", "3:16 note: also used here", "1:3 meant: index"}},
      // No index has a default, or is a value elsewhere.
      {"p rw { rangeValid { 1..2 } default { 1 } }\na rw { index { p } }\nb rw { index { p } }\n",
       {"2:16 error: \"p\" is a parameter, and no index [not-an-index]", "1:1 note: defined here",
        "3:16 note: also used here"}},
      {"p rw { rangeValid { 1..2 } }\na rw { index { p } }\nb rw { ctrlRO (p == 1) }\n",
       {"2:16 error: \"p\" is a parameter, and no index [not-an-index]", "1:1 note: defined here"}},
      {"p rw { }\na rw { index { p } }\n",
       {"2:16 error: \"p\" is a parameter, and no index [not-an-index]", "1:1 note: defined here"}},
      {"a rw { index { p } }\nb rw { index { p } }\n",
       {"1:16 error: there is no index \"p\" [undefined-index]", "2:16 note: also used here"}},
      {"pip index { rangeValid { 1..2 } }\npips rw { }\na rw { ctrlRO (pip == 1) }\n"
       "b rw { ctrlRO (pip == 2) }\n",
       {"3:16 error: \"pip\" is an index, and \"a\" is not indexed by it [index-mismatch]",
        "3:1 note: this definition has no index statement", "4:16 note: also used here",
        "3:16 meant: pips"}},
      // Each of the definitions lacks an index statement.
      {"pip index { rangeValid { 1..2 } }\na rw { ctrlRO (pip == 1) ctrlRO (pip == 3) }\n"
       "b rw { ctrlRO (pip == 2) }\n",
       {"2:16 error: \"a\" is not indexed by \"pip\" [index-mismatch]",
        "2:1 note: this definition has no index statement", "2:34 note: also used here",
        "3:16 error: \"b\" is not indexed by \"pip\" [index-mismatch]",
        "3:1 note: this definition has no index statement"}},
  };
  for (const BuildCase& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_EQ(detailedTexts(findingsOf(c.text)), c.findings);
  }
}

TEST(BuildCauses, AreToldOnceForManyPlaces) {
  std::string text;
  for (int i = 0; i < 9; ++i) text += "a" + std::to_string(i) + " rw { ctrlRO (nothing) }\n";
  const Texts expected = {
      "1:17 error: there is no \"nothing\" in the text: a constant is given by -D nothing=..., and "
      "a text has to be in quotes "
      "[undefined-name]",
      "2:17 note: also used here", "3:17 note: also used here", "4:17 note: also used here",
      "5:17 note: also used here, and in 4 more places"};
  EXPECT_EQ(detailedTexts(findingsOf(text)), expected);
}

TEST(BuildCauses, OfOddNames) {
  const BuildCase cases[] = {
      {"gain, rw { }\n",
       {"1:1 warning: the name of this definition is gain, with the sign at its end [odd-name]",
        "1:1 meant: gain"}},
      {"a rw { }\n\uFEFFb rw { }\n",
       {"2:1 warning: the name of this definition has a byte order mark in front [odd-name]",
        "2:1 meant: b"}},
      {"'gain' rw { }\n",
       {"1:1 warning: the name of this definition is 'gain' with its quotes [odd-name]",
        "1:1 meant: gain"}},
      {"\"gain\" rw { }\na rw { ctrlRO (gain == 1) }\n",
       {"1:1 error: the name of this definition is \"gain\" with its quotes [odd-name]",
        "2:16 note: there is no \"gain\"", "1:1 meant: gain"}},
      // Both are names, and one may be misspelt.
      {"gain: rw { }\ngain rw { }\n", {}},
      {"a:b rw { }\n'a rw { }\n: rw { }\n", {}},
  };
  for (const BuildCase& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_EQ(detailedTexts(findingsOf(c.text)), c.findings);
  }
}

TEST(BuildCauses, OfRings) {
  const BuildCase cases[] = {
      {"b rw { ctrlRO (c) }\nc rw { ctrlRO (a) }\na rw { ctrlRO (b) }\n",
       {"1:1 error: parameters depend on one another in a ring: b -> c -> a -> b [cycle]",
        "1:16 note: \"b\" depends on \"c\"", "2:16 note: \"c\" depends on \"a\"",
        "3:16 note: \"a\" depends on \"b\""}},
      {"i index { rangeValid { 1..2 } rangeValid (c) { 1 } }\na rw { index { i } }\n"
       "b rw { ctrlRO (a[1]) }\nc rw { ctrlRO (b) }\n",
       {"2:1 error: parameters depend on one another in a ring: a -> c -> b -> a [cycle]",
        "1:43 note: \"a\" depends on \"c\" by its index \"i\"", "4:16 note: \"c\" depends on \"b\"",
        "3:16 note: \"b\" depends on \"a\""}},
  };
  for (const BuildCase& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_EQ(detailedTexts(findingsOf(c.text)), c.findings);
  }
}

TEST(BuildCauses, OfConstants) {
  struct Case {
    std::string text;
    NamedValues constants;
    Texts findings;
  };
  const Case cases[] = {
      {"a rw { ctrlRO (MODEL == 1) }", {{"MODEL", "1"}}, {}},
      {"a rw { ctrlRO (vidStd::MODEL::spal) }", {{"MODEL", "1"}}, {}},
      // In a statement that is left out.
      {"a rw { rangeValid (AUDIO == 1) { 0..(LIMIT) } }", {{"AUDIO", "0"}, {"LIMIT", "1"}}, {}},
      {"a rw { }",
       {{"MODEL", "1"}},
       {"warning: nothing uses the constant \"MODEL\" [unused-constant]"}},
      {"a rw { ctrlRO (a) }",
       {{"a", "1"}},
       {"warning: the constant \"a\" counts nowhere: the text defines the name [unused-constant]",
        "1:1 note: defined here"}},
      {"a rw { ctrlRO (MODEL) }",
       {{"MODE", "1"}},
       {"1:16 error: there is no \"MODEL\", and nothing uses the constant \"MODE\" of the command "
        "line: one of the two is misspelt [undefined-name]",
        "1:16 meant: MODE"}},
      {"a rw { rangeValid { 5..(LIMIT) } }",
       {{"LIMIT", "3"}},
       {"1:21 error: a span goes upwards: 5 is above 3 [invalid-range]"}},
      // A constant that switches a statement off belongs to another variant.
      {"a rw { rangeValid { 1..2 } rangeValid (MODEL == 2) { 3 } }", {{"MODEL", "1"}}, {}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_EQ(detailedTexts(findingsOf(c.text, c.constants)), c.findings);
  }
}

TEST(BuildCauses, OfVideoStandards) {
  const std::string with = "a rw { ctrlRO (vidStd::s::fr) }\n";
  const BuildCase cases[] = {
      {"s rw { rangeValid { \"720p50\" } }\n" + with,
       {"1:21 warning: \"720p50\" selects no video standard [unknown-standard]",
        "1:21 meant: \"720p/50\""}},
      {"s rw { default { \"1080i/59\" } }\n" + with,
       {"1:18 warning: \"1080i/59\" selects no video standard [unknown-standard]",
        "1:18 meant: \"1080i/59.94\""}},
      // Which one was meant is open.
      {"s rw { default { \"1080i/51\" } }\n" + with,
       {"1:18 warning: \"1080i/51\" selects no video standard [unknown-standard]"}},
      {"s rw { default { \"720x576/50\" } rangeValid { \"4/3\", \"10 bit\", \"16:9\" } }\n" + with,
       {"1:18 warning: \"720x576/50\" selects no video standard [unknown-standard]"}},
      {"s rw { default { \"1080/50i\" } }\n" + with,
       {"1:18 warning: \"1080/50i\" selects no video standard [unknown-standard]",
        "1:18 meant: \"1080i/50\""}},
      {"s rw { }\nb rw { ctrlRO (\"1080I/50\" == s) }\n" + with,
       {"2:16 warning: \"1080I/50\" selects no video standard [unknown-standard]",
        "2:16 meant: \"1080i/50\""}},
      {"s rw { rangeValid { \"1080i/50\", \"auto\", \"720p/50 wide\", \"1920x1080/60/P\" } }\n" +
           with,
       {}},
      // The one with these signs, 1080p/25sF, is never selected.
      {"s rw { default { \"1080psF/25\" } }\n" + with,
       {"1:18 warning: \"1080psF/25\" selects no video standard [unknown-standard]",
        "1:18 meant: \"1080p/25\""}},
      {"s rw { rangeValid { \"1080i/50 \", \"720p50\" } default { \"720p50\" } }\n" + with,
       {"1:21 warning: \"1080i/50 \" is the name of a video standard with white space behind it "
        "[unknown-standard]",
        "1:21 meant: \"1080i/50\"",
        "1:34 warning: \"720p50\" selects no video standard "
        "[unknown-standard]",
        "1:55 note: also used here", "1:34 meant: \"720p/50\""}},
      // Without a rate; where a link could follow, it is no name.
      {"s rw { rangeValid { \"1080i\", \"625i\", \"3G\", \"720\" } }\n" + with,
       {"1:21 warning: \"1080i\" selects no video standard: the rate is missing, as in "
        "1080i/60.00, 1080i/59.94 or 1080i/50 [unknown-standard]",
        "1:30 warning: \"625i\" selects no video standard [unknown-standard]",
        "1:30 meant: \"625i/50\""}},
      // What is compared with is one of the values.
      {"s rw { rangeValid { \"1080i/59.94\", \"720p/50\" } ctrlRO (s == \"1080i/60\") }\n" + with,
       {"1:61 warning: \"1080i/60\" selects no video standard [unknown-standard]",
        "1:1 note: s is \"1080i/59.94\" or \"720p/50\""}},
      {"s rw { rangeValid { \"1080i/59.94\", \"720p/50\" } ctrlRO (s == \"1080i\") }\n" + with,
       {"1:61 warning: \"1080i\" selects no video standard: the rate is missing, as in "
        "1080i/60.00, 1080i/59.94 or 1080i/50 [unknown-standard]",
        "1:1 note: s is \"1080i/59.94\" or \"720p/50\"", "1:61 meant: \"1080i/59.94\""}},
      {"s rw { rangeValid { \"1080i\" } ctrlRO (s == \"1080i\") }\n" + with,
       {"1:21 warning: \"1080i\" selects no video standard: the rate is missing, as in "
        "1080i/60.00, 1080i/59.94 or 1080i/50 [unknown-standard]",
        "1:44 note: also used here"}},
      // No figure is asked of it; a part of a name; a text that is translated.
      {"s rw { rangeValid { \"720p50\" } }\n", {}},
      {"s rw { }\nb rw { ctrlRO (s $ \"1080I/5\") }\n" + with, {}},
      {"s rw { valueChange { \"720p50\" -> \"720p/50\" } default { \"720p50\" } }\n" + with, {}},
  };
  initVidStdTables();
  for (const BuildCase& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_EQ(detailedTexts(findingsOf(c.text)), c.findings);
  }
}

TEST(BuildCauses, SayNothingOfWhatOnlyFollowsFromReading) {
  const std::string broken[] = {
      "a rx { }\nb rw { ctrlRO (a) }\n",
      "a ro, index { i }\nb rw { ctrlRO (a[1][2]) }\n",
      "i index { rangeValid { one } }\nc rw { index { i } }\nb rw { ctrlRO (c[one]) }\n",
      "i indexx { rangeValid { 1 } }\nc rw { index { i } }\n",
      "c rw { index ( i ) }\nb rw { ctrlRO (c[1]) }\n",
      "i index { rangeValid { 1 } }\nc rw { index i ctrlRO (i) }\n",
      "these words and a name\nb rw { ctrlRO (name) }\n",
  };
  for (const std::string& text : broken) {
    SCOPED_TRACE(text);
    EXPECT_EQ(findingTexts(findingsOf(text)).size(), 1U);
  }
}

TEST(BuildCauses, AreFoundInLinearTimeForManyNames) {
  std::string text;
  for (int i = 0; i < 20000; ++i) {
    text += "p" + std::to_string(i) + " rw { ctrlRO (q" + std::to_string(i) + "_q) }\n";
  }
  EXPECT_EQ(findingTexts(findingsOf(text)).size(), 20000U);
}

}  // namespace
