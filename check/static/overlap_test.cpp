#include "check/static/static_test.h"

namespace {

TEST(Overlap, IsWhatAListSaysTwice) {
  const StaticCase cases[] = {
      {"a rw { rangeValid { 1..5, 3..9 } }", {"1:27 3..9"}},
      {"a rw { rangeValid { 3..9, 1..5 } }", {"1:27 1..5"}},
      {"a rw { rangeValid { 1, 2, 1 } }", {"1:27 1"}},
      {"a rw { rangeValid { 1..9, 5 } rangeDoc { 2, 2 } }", {"1:27 5", "1:45 2"}},
      {"a rw { rangeValid { \"a\", \"b\", \"a\" } }", {"1:31 \"a\""}},
      {"a rw { rangeValid { 0x10, 16 } }", {"1:27 16"}},
      {"n rw { } a rw { rangeValid { (n), 1, (n) } }", {"1:38 ("}},
      {"n rw { } a rw { rangeValid { 0..(n), 0..(n) } }", {"1:38 0..(n)"}},
      {"n rw { } a rw { rangeValid { 0..(n), 0..(n + 1), (n), (n)..9, 1..(n) } }"},
      {"a rw { rangeValid { 0..5, 6..9, \"a\", \"A\" } }"},
      {"a rw { rangeValid { \"5\", \"05\" } }"},
  };
  expectFound(checkOverlap, cases);
}

TEST(Overlap, IsASumThatLooksLikeALimit) {
  const StaticCase cases[] = {
      {"n rw { } a rw { rangeValid { 0..100 } rangeValid { 0..(n) } }", {"1:39 rangeValid"}},
      {"n rw { } a rw { rangeValid { 0..(n) } rangeValid { 0..100 } }", {"1:39 rangeValid"}},
      {"n rw { } a rw { rangeValid { 0..100 } rangeValid { (n)..100 } }", {"1:39 rangeValid"}},
      {"a rw { rangeValid { 0..100 } rangeValid { 10..50 } }", {"1:30 rangeValid"}},
      {"n rw { } i index { rangeValid { 1..4 } rangeValid { 1..(n) } }", {"1:40 rangeValid"}},
      {"a rw { rangeValid { \"a\", \"b\" } rangeValid { \"c\", \"b\" } }", {"1:32 rangeValid"}},
      {"a rw { rangeValid { 1, 4..6 } rangeValid { 9, 1 } }", {"1:31 rangeValid"}},
      {"a rw { rangeValid { 1, 4..6 } rangeValid { 9, 5 } }"},
      {"a rw { rangeValid { 0..9 } rangeValid { 20..29 } }"},
      {"a rw { rangeValid { 1, 3, \"a\" } rangeValid { 2, \"b\" } }"},
      {"n rw { } a rw { rangeValid { \"a\", \"b\" } rangeValid (n) { \"a\" } }"},
      {"n rw { } a rw { rangeValid { 0..9 } rangeValid { (n)..(n + 9) } }"},
      {"n rw { } a rw { rangeValid { 0..100 } rangeValid (n) { 0..(n) } }"},
  };
  expectFound(checkOverlap, cases);
}

TEST(Overlap, IsAConditionThatComesTwice) {
  const StaticCase cases[] = {
      {"n rw { } a rw { rangeValid (n == 1) { 1 } rangeValid (n==1) { 2 } }", {"1:43 rangeValid"}},
      {"n rw { } a rw { rangeDoc (n == 1) { 1 } rangeDoc (n == 1) { 2 } }", {"1:41 rangeDoc"}},
      {"n rw { } a rw { ctrlRO (n == 1) ctrlRO (n == 1) }", {"1:33 ctrlRO"}},
      {"n rw { } a rw { ctrlValid (n == 1) ctrlValid (n == 1) }", {"1:36 ctrlValid"}},
      {"n rw { } a rw { rangeValid (n == 1) { 1 } rangeValid (n == 2) { 1 } }"},
      {"n rw { } a rw { rangeValid (n == 1) { 1..9 } rangeValid (n == 1) { \"auto\" } }"},
      {"n rw { } a rw { rangeValid (n == 1) { 1 } rangeDoc (n == 1) { 1 } ctrlRO (n == 1) }"},
      {"n rw { } a rw { default (n == 1) { 1 } default (1 == n) { 2 } }"},
  };
  expectFound(checkOverlap, cases);
  const std::string_view variants =
      "a rw { default (MODEL == 1) { 1 } default (MODEL == 1) { 2 } default { 3 } }";
  EXPECT_EQ(placesOf(checkOverlap, variants, {{"MODEL", "1"}}),
            std::vector<std::string>{"1:35 default"});
}

TEST(Overlap, IsWhatTheEngineDoes) {
  EXPECT_EQ(heldAfter("n rw { } a rw { rangeValid { 0..100 } rangeValid { 0..(n) } }",
                      {{"n", "300"}, {"a", "400"}}, "a"),
            "300");
  EXPECT_EQ(heldAfter("n rw { } a rw { rangeValid (n == 1) { 1 } rangeValid (n == 1) { 2 } }",
                      {{"n", "1"}, {"a", "2"}}, "a"),
            "2");
}

}  // namespace
