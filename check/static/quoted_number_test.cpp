#include "check/static/static_test.h"

namespace {

TEST(QuotedNumbers, CannotBeChosenBesideNumbers) {
  const StaticCase cases[] = {
      {"a rw { rangeValid { \"5\", 7..9 } }", {"1:21 \"5\""}},
      {"a rw { rangeValid { \"5\" } rangeValid { 7 } }", {"1:21 \"5\""}},
      {"n rw { } a rw { rangeValid (n) { \"5\", 7 } }", {"1:34 \"5\""}},
      {"n rw { } a rw { rangeValid { \"5\", 0..(n) } }", {"1:30 \"5\""}},
      {"i index { rangeValid { 1..2, \"3\" } }", {"1:30 \"3\""}},
      {"a rw { rangeValid { \"5\", \"7\", \"off\" } }"},
      {"a rw { rangeValid { \"off\", 0..9 } }"},
      {"n rw { } a rw { rangeValid { \"5\" } rangeValid (n) { 7 } }"},
      {"n rw { } a rw { rangeValid { \"5\", (n) } }"},  // maybe a text
  };
  expectFound(checkQuotedNumbers, cases);
}

TEST(QuotedNumbers, AreTextsInExpressions) {
  const StaticCase cases[] = {
      {"a rw { rangeValid { 0..99 } } b rw { ctrlRO (a < \"10\") }", {"1:50 \"10\""}},
      {"a rw { } b rw { ctrlRO (\"10\" >= a) }", {"1:25 \"10\""}},
      {"a rw { rangeValid { 0..99 } } b rw { default { (a + \"1\") } }", {"1:53 \"1\""}},
      {"a rw { rangeValid { 0..99 } } b rw { ctrlRO (a == \"0x10\") }", {"1:51 \"0x10\""}},
      {"a rw { rangeValid { 0..99 } } b rw { ctrlRO (a == \"10\" || a != \"5\") }"},
      {"a rw { } b rw { ctrlRO (\"010\" != a) }", {"1:25 \"010\""}},
      {"a rw { } b rw { default { (a + \"1\") } ctrlRO ((a + \"x\") == \"0x10\") }"},
      {"a rw { } b rw { ctrlRO (a < \"b\" || a $ \"1\") default { (\"1\" + \"2\") } }"},
  };
  expectFound(checkQuotedNumbers, cases);
}

TEST(QuotedNumbers, AreProposedWithoutQuotes) {
  const std::vector<std::string> proposed = {"\"5\" -> 5"};
  EXPECT_EQ(proposalsOf(checkQuotedNumbers, "a rw { rangeValid { \"5\", 7..9, \"0x5\" } }"),
            proposed);
}

TEST(QuotedNumbers, AreWhatTheEngineDoes) {
  EXPECT_EQ(heldAfter("a rw { rangeValid { 7..9, \"5\" } }", {{"a", "8"}, {"a", "5"}}, "a"), "8");
  const std::string_view less = "a rw { } b ro { rangeValid { (a < \"10\") } }";
  EXPECT_EQ(heldAfter(less, {{"!b", "5"}, {"a", "9"}}, "b"), "0");
  const std::string_view sum = "a rw { } b ro { rangeValid { (a + \"1\") } }";
  EXPECT_EQ(heldAfter(sum, {{"!b", "5"}, {"a", "3"}}, "b"), "31");
  const std::string_view equal = "a rw { } b ro { rangeValid { (a == \"0x10\") } }";
  EXPECT_EQ(heldAfter(equal, {{"!b", "5"}, {"a", "16"}, {"a", "0x10"}}, "b"), "0");
}

}  // namespace
