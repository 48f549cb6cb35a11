#include "check/static/static_test.h"

namespace {

TEST(Documented, IsWhatSomeRangeAllows) {
  const StaticCase cases[] = {
      {"a rw { rangeValid { 8..128 } rangeDoc { 4, 16, 200 } }", {"1:41 4", "1:48 200"}},
      {"a rw { rangeValid { 8..128 } rangeDoc { 0..16 } }", {"1:41 0..16"}},
      {"a rw { rangeValid { 0..9, 20..29 } rangeDoc { 5..25 } }", {"1:47 5..25"}},
      {"a rw { rangeValid { \"a\", \"b\" } rangeDoc { \"a\", \"c\" } }", {"1:48 \"c\""}},
      {"n rw { } a rw { rangeValid (n) { 0..3 } rangeValid (n == 0) { 5 } rangeDoc (n) { 4 } }",
       {"1:82 4"}},
      {"a rw { rangeValid { 8..128 } rangeDoc { 16, 24..32 } }"},
      {"a rw { rangeDoc { 16 } }"},
      {"a rw { rangeValid { 0..9 } valueChange { \"unity\" -> 5 } rangeDoc { \"unity\", 1 } }"},
      {"n rw { } a rw { rangeValid { 0..(n) } rangeDoc { 16 } }"},
      {"n rw { } a rw { rangeValid { 0..9 } rangeDoc { (n) } }"},
      {"n rw { } a rw { rangeValid (n) { 0..3 } rangeValid (n == 0) { 5 } rangeDoc (n) { 5 } }"},
  };
  expectFound(checkDocumented, cases);
}

TEST(Documented, KnowsWhatAConstantDecides) {
  const std::string_view text =
      "a rw { rangeValid { 0..9 } rangeDoc (MODEL == 1) { 0..(TOP) } rangeDoc { 1 } }";
  EXPECT_EQ(placesOf(checkDocumented, text, {{"MODEL", "1"}, {"TOP", "12"}}),
            std::vector<std::string>{"1:52 0..(TOP)"});
  EXPECT_EQ(placesOf(checkDocumented, text, {{"MODEL", "1"}, {"TOP", "9"}}),
            std::vector<std::string>{});
  EXPECT_EQ(placesOf(checkDocumented, text, {{"MODEL", "2"}, {"TOP", "12"}}),
            std::vector<std::string>{});
}

}  // namespace
