#include "check/static/static_test.h"

namespace {

TEST(Translations, NeedATargetInARange) {
  const StaticCase cases[] = {
      {"a rw { rangeValid { 0..1 } valueChange { \"x\" -> 5 } }", {"1:49 5"}},
      {"a rw { rangeValid { \"a\", \"b\" } valueChange { \"x\" -> \"c\" } }", {"1:53 \"c\""}},
      {"n rw { } a rw { rangeValid (n) { 0..1 } rangeValid (n == 0) { 0 } valueChange { \"x\" -> 5 "
       "} }",
       {"1:88 5"}},
      {"a rw { rangeValid { 0..1 } valueChange { \"x\" -> \"\" } }", {"1:49 \"\""}},
      {"a rw { rangeValid { 0..1 } valueChange { \"x\" -> 1 } }"},
      {"a rw { valueChange { \"x\" -> 5 } }"},
      {"n rw { } a rw { rangeValid (n) { 0..1 } rangeValid (n == 0) { 5 } valueChange { \"x\" -> 5 "
       "} }"},
      {"n rw { } a rw { rangeValid { 0..(n) } valueChange { \"x\" -> 5 } }"},
      {"n rw { } a rw { rangeValid { 0..9 } rangeValid (n) { 0..3 } valueChange { \"x\" -> 5 } }"},
      {"n rw { } a rw { rangeValid (n) { 0..1 } valueChange { \"x\" -> \"\" } }"},
  };
  expectFound(checkTranslations, cases);
}

TEST(Translations, AreFollowedTwice) {
  const StaticCase cases[] = {
      {"a rw { valueChange { \"a\" -> \"b\" } valueChange { \"b\" -> \"c\" } }", {"1:29 \"b\""}},
      {"a rw { rangeValid { 0..1 } valueChange { 0 -> 1 } valueChange { 1 -> 0 } }", {"1:47 1"}},
      {"a rw { rangeValid { 0..1 } valueChange { 1 -> 1 } }", {"1:42 1"}},
      {"a rw { valueChange { \"a\" -> \"c\" } valueChange { \"b\" -> \"c\" } }"},
  };
  expectFound(checkTranslations, cases);
}

TEST(Translations, TakeAValueAway) {
  const StaticCase cases[] = {
      {"a rw { rangeValid { 0..5 } valueChange { 2 -> 3 } }", {"1:42 2"}},
      {"a rw { rangeValid { \"a\", \"b\" } valueChange { \"a\" -> \"b\" } }", {"1:46 \"a\""}},
      {"a rw { rangeValid { 0..1 } valueChange { \"-1\" -> 1 } valueChange { \"on\" -> 1 } }"},
      {"a rw { valueChange { 2 -> 3 } }"},
  };
  expectFound(checkTranslations, cases);
}

TEST(Translations, AreWhatTheEngineDoes) {
  EXPECT_EQ(heldAfter("a rw { rangeValid { 0..1 } valueChange { \"x\" -> 5 } }",
                      {{"a", "1"}, {"a", "x"}}, "a"),
            "1");
  EXPECT_EQ(heldAfter("a rw { valueChange { \"a\" -> \"b\" } valueChange { \"b\" -> \"c\" } }",
                      {{"a", "a"}}, "a"),
            "c");
  EXPECT_EQ(heldAfter("a rw { rangeValid { 0..1 } valueChange { 0 -> 1 } valueChange { 1 -> 0 } }",
                      {{"a", "0"}}, "a"),
            "0");
  EXPECT_EQ(heldAfter("a rw { rangeValid { 0..5 } valueChange { 2 -> 3 } }", {{"a", "2"}}, "a"),
            "3");
  EXPECT_EQ(heldAfter("n rw { } a rw { rangeValid (n == 0) { 0..2 } valueChange { \"x\" -> 5 } }",
                      {{"a", "x"}}, "a"),
            "2");
}

}  // namespace
