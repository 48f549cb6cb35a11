#include "check/static/static_test.h"

namespace {

TEST(Disjoint, AreRangesWithoutACommonValue) {
  const StaticCase cases[] = {
      {"n rw { } a rw { rangeValid { 0..9 } rangeValid (n) { 20..29 } }", {"1:37 rangeValid"}},
      {"n rw { } a rw { rangeValid (n) { 20..29 } rangeValid { 0..9 } }", {"1:17 rangeValid"}},
      {"n rw { } a rw { rangeValid { \"a\" } rangeValid (n) { \"b\", 1..2 } }",
       {"1:36 rangeValid"}},
      {"n rw { } a rw { rangeValid { 0..9 } rangeValid (n == 1) { 20 } rangeValid (n == 2) { 21 } "
       "}",
       {"1:37 rangeValid"}},
      {"n rw { } i index { rangeValid { 1..4 } rangeValid (n) { 5..6 } }", {"1:40 rangeValid"}},
      {"n rw { } a rw { rangeValid { 0..9 } rangeValid (n) { 9..29 } }"},
      {"n rw { } a rw { rangeValid { 0..9 } rangeValid (n) { \"5\" } }"},
      {"n rw { } a rw { rangeValid { 0..9, \"a\" } rangeValid (n) { \"a\", \"b\" } }"},
      {"n rw { } a rw { rangeValid (n == 1) { 0..9 } rangeValid (n) { 20..29 } }"},
      {"n rw { } a rw { rangeValid { 0..9 } rangeValid (n) { } }"},
      {"n rw { } a rw { rangeValid { 0..9 } rangeValid (n) { 20..(n) } }"},
      {"n rw { } a rw { rangeValid { 0..9 } rangeValid (n) { 20 } rangeValid (n) { (n) } }"},
  };
  expectFound(checkDisjoint, cases);
}

TEST(Disjoint, KnowsWhatAConstantDecides) {
  const std::string_view text =
      "n rw { } a rw { rangeValid (MODEL == 1) { 0..9 } rangeValid (n) { 20..29 } }";
  EXPECT_EQ(placesOf(checkDisjoint, text, {{"MODEL", "1"}}),
            std::vector<std::string>{"1:50 rangeValid"});
  EXPECT_EQ(placesOf(checkDisjoint, text, {{"MODEL", "2"}}), std::vector<std::string>{});
}

TEST(Disjoint, FailsEveryCommit) {
  const std::string_view text =
      "n rw { rangeValid { 0..1 } } a rw { rangeValid { 0..9 } rangeValid (n == 1) { 20..29 } }";
  EXPECT_EQ(heldAfter(text, {{"a", "3"}}, "a"), "3");
  EXPECT_EQ(heldAfter(text, {{"a", "3"}, {"n", "1"}, {"a", "5"}, {"a", "25"}}, "a"), "3");
}

}  // namespace
