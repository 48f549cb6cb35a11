#include "sw/parm/build/reference_check.h"

#include <gtest/gtest.h>

#include "tests/support/build.h"

namespace {

// What the tests refer to: an index of numbers with a translation, one of texts, and parameters of
// none, one and both of them. It ends in a newline.
const std::string SURROUNDINGS =
    "channel index { rangeValid { 1..2 } valueChange { \"first\" -> 1 } }\n"
    "side index { rangeValid { \"left\", \"right\" } }\n"
    "mode rw { }\n"
    "gain rw { index { channel } }\n"
    "crop rw { index { channel, side } }\n";

constexpr uint32_t FIRST_LINE = 6;

TEST(ReferenceCheck, AcceptsEveryNameThatStandsForSomething) {
  const std::string_view texts[] = {
      "p rw { ctrlRO (mode + p + sw::this + X + X[1]) }",
      "p rw { ctrlRO (gain) }",  // the instance that shares the index values
      "p rw { ctrlRO (gain[1] + gain[ 2 ] + gain[0x2] + gain[first]) }",
      "p rw { ctrlRO (crop[1][left] + crop) }",
      "p rw { index { channel } ctrlRO (channel + crop) }",
      "p rw { index { channel, side } rangeValid (side == \"left\") { 0..(channel) } }",
      "p rw { ctrlRO (vidStd::mode::spal + vidStd::X::fr + vidStd::gain::f0) }",
      "p rw { index { channel } ctrlRO (vidStd::channel::fr) }",
      "a index { ctrlValid (side) rangeValid (mode) { 0..(a) } }",  // an index may name any index
      "a index { rangeDoc { (gain[1]) } ctrlRO (channel) default { (side) } }",
      "p rw { ctrlValid (nobody && 0 || 1) }",  // decided, so nothing refers to it
      "p rw { rangeValid (OFF) { (nobody), (gain[9]), (channel) } default (OFF) { (nobody) } }",
      "p rw { ctrlRO (q) }\nq ro { }",  // further down
  };
  for (const std::string_view text : texts) {
    const std::string whole = SURROUNDINGS + std::string(text) + "\n";
    expectReports({{whole, {{"X", "1"}, {"X[1]", "1"}, {"OFF", "0"}}, 0, ""}});
  }
}

struct FaultCase {
  std::string line;
  std::vector<std::pair<size_t, std::string>> faults;  // column and message
  TestRegistry::Constants constants = {};
};

void expectFaults(const std::vector<FaultCase>& cases) {
  for (const FaultCase& c : cases) {
    std::string diagnostics;
    for (const auto& [column, message] : c.faults) {
      diagnostics += "Error on line " + std::to_string(FIRST_LINE) + "\n" + message + "\n" +
                     c.line + "\n" + std::string(column, ' ') + "^\n";
    }
    const std::string whole = SURROUNDINGS + c.line + "\n";
    expectReports({{whole, c.constants, -1, diagnostics}});
  }
}

TEST(ReferenceCheck, ReportsNamesThatNothingDefines) {
  expectFaults({
      {"p rw { ctrlRO (nobody) }", {{15, "Undefined variable. nobody"}}},
      // Once for each name and expression.
      {"p rw { ctrlRO (a + b + a + b) ctrlRO (a) }",
       {{15, "Undefined variable. a"},
        {19, "Undefined variable. b"},
        {38, "Undefined variable. a"}}},
      {"p rw { ctrlRO (nobody[1] + nobody[2]) }",
       {{15, "Undefined variable. nobody[1]"}, {27, "Undefined variable. nobody[2]"}}},
      // A constant that no command line has defined is as good as a misspelled parameter.
      {"p rw { rangeValid (MODEL == 1) { 1 } }", {{19, "Undefined variable. MODEL"}}},
      {"p rw { ctrlRO (X[2]) }", {{15, "Undefined variable. X[2]"}}, {{"X", "1"}}},
      {"p rw { ctrlValid (nobody) }", {{18, "Undefined variable. nobody"}}},
      {"p rw { rangeValid { (a)..(b) } }",
       {{21, "Undefined variable. a"}, {26, "Undefined variable. b"}}},
      {"p rw { rangeDoc (a) { 1 } }", {{17, "Undefined variable. a"}}},
      {"p rw { default (a) { (b) } }",
       {{16, "Undefined variable. a"}, {22, "Undefined variable. b"}}},
      {"p rw { default { (b) } }", {{18, "Undefined variable. b"}}},
      {"p rw { ctrlRO (vidStd::nobody::spal) }",
       {{15, "Undefined variable. vidStd::nobody::spal"}}},
      {"p rw { ctrlRO (vidStd::mode::xyz) }", {{15, "Undefined variable. vidStd::mode::xyz"}}},
      {"p rw { ctrlRO (vidStd::mode) }", {{15, "Undefined variable. vidStd::mode"}}},
      {"p rw { ctrlRO (sw::this[1]) }", {{15, "Undefined variable. sw::this[1]"}}},
      {"i index { ctrlValid (a) rangeValid (b) { (c) } }",
       {{36, "Undefined variable. b"},
        {42, "Undefined variable. c"},
        {21, "Undefined variable. a"}}},
      {"i index { default (a) { (b) } }",
       {{19, "Undefined variable. a"}, {25, "Undefined variable. b"}}},
  });
}

TEST(ReferenceCheck, ReportsIndicesThatDoNotFit) {
  const std::string mismatch = "Index mismatch.";
  expectFaults({
      {"p rw { ctrlRO (gain[3]) }", {{15, mismatch}}},
      {"p rw { ctrlRO (gain[0]) }", {{15, mismatch}}},
      {"p rw { ctrlRO (gain[one]) }", {{15, mismatch}}},
      {"p rw { ctrlRO (gain[]) }", {{15, mismatch}}},
      {"p rw { ctrlRO (gain[1][1]) }", {{15, mismatch}}},
      {"p rw { ctrlRO (crop[1]) }", {{15, mismatch}}},
      {"p rw { ctrlRO (crop[left][1]) }", {{15, mismatch}}},
      {"p rw { ctrlRO (crop[1][top]) }", {{15, mismatch}}},
      {"p rw { ctrlRO (mode[1]) }", {{15, mismatch}}},
      {"p rw { ctrlRO (p[1]) }", {{15, mismatch}}},
      // Once for each name and expression.
      {"p rw { ctrlRO (gain[3] + gain[3] + gain[4]) ctrlRO (gain[3]) }",
       {{15, mismatch}, {35, mismatch}, {52, mismatch}}},
      // A constant of the same name changes nothing.
      {"p rw { ctrlRO (gain[3]) }", {{15, mismatch}}, {{"gain[3]", "1"}}},
      {"i index { ctrlValid (gain[3]) }", {{21, mismatch}}},
      {"p rw { rangeDoc { (gain[3]) } }", {{19, mismatch}}},
  });
}

TEST(ReferenceCheck, ReportsIndicesThatAParameterDoesNotHave) {
  const std::string mismatch = "Index mismatch.";
  expectFaults({
      {"p rw { ctrlRO (channel) }", {{15, mismatch}}},
      {"p rw { index { side } ctrlRO (channel + side) }", {{30, mismatch}}},
      {"p rw { ctrlRO (vidStd::channel::fr) }", {{15, mismatch}}},
      {"p rw { index { channel } ctrlRO (channel[1]) }", {{33, mismatch}}},
      {"p rw { ctrlRO (channel) }", {{15, mismatch}}, {{"channel", "1"}}},
      {"i index { ctrlValid (side[1]) }", {{21, mismatch}}},
  });
}

// The first index statement of each parameter counts; what is wrong with it is reported there.
TEST(ReferenceCheck, GoesByTheFirstIndexStatement) {
  expectReports({
      {"a index { rangeValid { 1..2 } }\n"
       "b index { rangeValid { 1..2 } }\n"
       "p rw { index { a } index { a, b } ctrlRO (b) }\n"
       "q rw { ctrlRO (p[1]) ctrlRO (p[1][1]) }\n",
       {},
       -1,
       "Warning on line 3\n"
       "Mulitple index definitions. Only first index definition will be used.\n"
       "p rw { index { a } index { a, b } ctrlRO (b) }\n"
       "                           ^\n"
       "Error on line 3\n"
       "Index mismatch.\n"
       "p rw { index { a } index { a, b } ctrlRO (b) }\n"
       "                                          ^\n"
       "Error on line 4\n"
       "Index mismatch.\n"
       "q rw { ctrlRO (p[1]) ctrlRO (p[1][1]) }\n"
       "                             ^\n"},
      {"p rw { index { nobody } }\n"
       "q rw { ctrlRO (p[1]) ctrlRO (p[1][1]) }\n",
       {},
       -1,
       "Error on line 1\n"
       "Undefined index. nobody\n"
       "p rw { index { nobody } }\n"
       "               ^\n"
       "Error on line 2\n"
       "Index mismatch.\n"
       "q rw { ctrlRO (p[1]) ctrlRO (p[1][1]) }\n"
       "                             ^\n",
       "Internal error: Could not find index \"nobody\"\n"},
  });
}

// The index that a value is held against may be built later than the one that names it.
TEST(ReferenceCheck, HoldsValuesAgainstIndicesFurtherDown) {
  expectReports(
      {{"a index { ctrlValid (p[1]) ctrlValid (p[5]) }\n"
        "p rw { index { z } }\n"
        "z index { rangeValid { 1..2 } }\n",
        {},
        -1,
        "Error on line 1\n"
        "Index mismatch.\n"
        "a index { ctrlValid (p[1]) ctrlValid (p[5]) }\n"
        "                                      ^\n"}});
}

TEST(ReferenceCheck, TakesNoRecordWithoutAnAccessWordForADefinition) {
  expectReports({{"p rw { ctrlRO (late) }\nlate\n",
                  {},
                  -1,
                  "Error on line 1\n"
                  "Undefined variable. late\n"
                  "p rw { ctrlRO (late) }\n"
                  "               ^\n"}});
}

}  // namespace
