#include "coverage/tracefile.h"

#include <gtest/gtest.h>

namespace {

using Texts = std::vector<std::string>;

const char* const TEXT =
    "a rw { rangeValid (b == 1) { 1 } default { 1 } }\n"
    "b rw {\n"
    "  rangeValid { 0..1 }\n"
    "  ctrlRO (a)\n"
    "}\n"
    "c rw { default { 1 } }\n";

// What a session might have left behind.
void reachSome(TextCoverage& coverage) {
  coverage.definitions()[0].judged = 5;
  coverage.definitions()[1].judged = 2;
  StatementCoverage& range = coverage.statements()[0];
  range.chosen = range.whenTrue = 4;
  coverage.statements()[2].chosen = 2;
}

TEST(Tracefile, HasFunctionsBranchesAndLines) {
  TextCoverage coverage(TEXT);
  reachSome(coverage);
  EXPECT_EQ(tracefile(coverage, "x.ostrel"),
            "TN:\nSF:x.ostrel\n"
            "FN:1,a\nFN:2,b\nFN:6,c\nFNDA:5,a\nFNDA:2,b\nFNDA:0,c\nFNF:3\nFNH:2\n"
            "BRDA:1,0,0,4\nBRDA:1,0,1,0\nBRDA:4,0,0,-\nBRDA:4,0,1,-\nBRF:4\nBRH:1\n"
            "DA:1,0\nDA:2,2\nDA:3,2\nDA:4,0\nDA:6,0\nLF:5\nLH:2\n"
            "end_of_record\n");
  coverage.statements()[0].isNeverFalse = true;
  coverage.statements()[3].isNeverChosen = true;
  const std::string without = tracefile(coverage, "x.ostrel");
  EXPECT_EQ(without.find("BRDA:1,0,1"), std::string::npos);
  EXPECT_EQ(without.find("\nDA:4,"), std::string::npos) << without;
}

TEST(Tracefile, TheSummaryIsALine) {
  TextCoverage coverage(TEXT);
  EXPECT_EQ(coverageSummary(coverage, "x"),
            "0.0 % of x: 0 of 5 statements, 0 of 4 outcomes of conditions, 0 of 3 definitions");
  reachSome(coverage);
  EXPECT_EQ(coverageSummary(coverage, "x"),
            "41.6 % of x: 2 of 5 statements, 1 of 4 outcomes of conditions, 2 of 3 definitions");
}

TEST(Tracefile, WhatIsMissingIsNamed) {
  TextCoverage coverage(TEXT);
  EXPECT_EQ(
      missingCoverage(coverage, "x"),
      (Texts{"x:1: a was never judged", "x:2: b was never judged", "x:6: c was never judged"}));
  reachSome(coverage);
  EXPECT_EQ(missingCoverage(coverage, "x"),
            (Texts{"x:1: a: the condition of rangeValid was never false",
                   "x:1: a: default never gave the value of a reset",
                   "x:4: b: the condition of ctrlRO was never asked", "x:6: c was never judged"}));
  coverage.statements()[0].isNeverFalse = true;
  coverage.statements()[1].isNeverChosen = true;
  coverage.statements()[3].isNeverTrue = true;
  EXPECT_EQ(missingCoverage(coverage, "x"),
            (Texts{"x:4: b: ctrlRO was never judged",
                   "x:4: b: the condition of ctrlRO was never false", "x:6: c was never judged"}));
}

}  // namespace
