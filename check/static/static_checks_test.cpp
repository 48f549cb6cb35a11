#include "check/static/static_test.h"

namespace {

// The codes that checkStatics() gives a text, and whether each named token is explained.
std::vector<std::string_view> codesOf(std::string_view text, ExplainedPlaces* explained = nullptr) {
  initVidStdTables();
  const SourceText source("text", std::string(text));
  Findings findings;
  ReadText read;
  readText(source, read, findings);
  const Variant variant = buildVariant(source, read, {}, findings);
  const CheckedText checked = {source, read, {}, variant};
  Findings found;
  const ExplainedPlaces places = checkStatics(checked, found);
  if (explained != nullptr) *explained = places;
  std::vector<std::string_view> codes;
  for (const Finding& finding : found.inTextOrder()) codes.push_back(finding.code);
  return codes;
}

TEST(StaticChecks, AreAllMade) {
  const std::vector<std::string_view> codes = {
      "unused-index", "merged",     "octal",         "precedence",     "overlap",
      "own-index",    "empty-text", "foreign-index", "self-reference", "quoted-number",
      "translation",  "disjoint",   "doc-outside",   "other-standard", "undefined-figure"};
  const std::string_view text =
      "u index { rangeValid { 1..2 } }\n"
      "a rw { }\na rw { rangeValid { 0..010 } }\n"
      "b rw { ctrlRO (a & 8 == 0) }\n"
      "c rw { rangeValid { 1..3, 2..4 } }\n"
      "i index { rangeValid { 1..2 } }\nd rw { index { i } ctrlValid (i == 1) }\n"
      "e rw { ctrlRO (a == \"\") }\n"
      "f rw { ctrlRO (d == 1) }\n"
      "g rw { rangeValid { 0..(g) } }\n"
      "h rw { rangeValid { \"5\", 7..9 } }\n"
      "j rw { rangeValid { 0..1 } valueChange { \"x\" -> 5 } }\n"
      "k rw { rangeValid { 0..9 } rangeValid (a) { 20 } }\n"
      "l rw { rangeValid { 0..9 } rangeDoc { 20 } }\n"
      "m rw { rangeValid { \"1080p/25sF\" } }\n"
      "n rw { rangeValid { 0..(vidStd::m::spal + vidStd::a::spal) } }\n";
  EXPECT_EQ(codesOf(text), codes);
}

TEST(StaticChecks, SayWhichTokensAreExplained) {
  ExplainedPlaces explained;
  codesOf("a rw { }\nb rw { ctrlRO (a == \"\") ctrlRO (a == 1) }", &explained);
  EXPECT_TRUE(explained.contains({2, 20}));
  EXPECT_FALSE(explained.contains({2, 15}));
  EXPECT_FALSE(explained.contains({2, 32}));
}

TEST(StaticChecks, LeaveOutWhatABrokenTextMayHaveLost) {
  EXPECT_EQ(codesOf("a rw { }\na rw { rangeValid { 010 } }\nu index { }\nb rw { = "),
            (std::vector<std::string_view>{"merged", "octal"}));
}

TEST(StaticChecks, LeaveOutWhatFollowsFromAnOctalNumber) {
  EXPECT_EQ(codesOf("a rw { rangeValid { 0..0100 } rangeDoc { 0, 100 } }\n"
                    "b rw { rangeValid { 0..010 } valueChange { \"top\" -> 10 } }\n"
                    "c rw { rangeValid { 0..010, 10 } rangeValid (a) { 9..10 } }\n"),
            (std::vector<std::string_view>{"octal", "octal", "octal"}));
}

// A wrong name in a list of indices is reported by the engine, and all of this only follows.
TEST(StaticChecks, LeaveOutWhatFollowsFromAWrongIndexName) {
  EXPECT_EQ(codesOf("channel index { rangeValid { 1..2 } }\n"
                    "gain rw { index { chanel } rangeValid { 0..9 } }\n"
                    "trim rw { index { channel } rangeValid { 0..(gain) } }\n"
                    "mono rw { rangeValid { 0..(gain) } }\n"),
            std::vector<std::string_view>{});
  EXPECT_EQ(codesOf("u index { rangeValid { 1..2 } }\ngain rw { index { chanel } }\n"),
            std::vector<std::string_view>{});
}

// The engine refuses a condition that is never true; why it is not, is still told.
TEST(StaticChecks, LookAtATextThatIsNotBuilt) {
  EXPECT_EQ(codesOf("a rw { }\nb rw { rangeValid (a & 8 == 0) { 1 } }"),
            std::vector<std::string_view>{"precedence"});
}

}  // namespace
