#include "check/static/static_test.h"

namespace {

TEST(SelfReference, IsAWordWhereTheValueUnderTestIsMeant) {
  const StaticCase cases[] = {
      {"gain rw { rangeValid { 0..(gain) } }", {"1:28 gain"}},
      {"gain rw { rangeValid { 0..(gain - 1), (gain + 1)..(gain + 2) } }", {"1:28 gain"}},
      {"gain rw { rangeValid (gain > 5) { 0..9 } rangeValid (gain < 6) { 0..4 } }", {"1:23 gain"}},
      {"gain rw { rangeValid { (gain) } }", {"1:25 gain"}},
      {"gain rw { rangeValid { 0..1 } ctrlRO (gain == 1) }", {"1:39 gain"}},
      {"gain rw { rangeValid { 0..1 } ctrlValid (gain == 1) }", {"1:42 gain"}},
      {"c index { rangeValid { 1..2 } } gain rw { index { c } rangeValid { 0..(gain) } }",
       {"1:72 gain"}},
  };
  expectFound(checkSelfReference, cases);
}

TEST(SelfReference, IsNoWordWhereItIsOfUse) {
  const StaticCase cases[] = {
      {"gain rw { rangeValid { (gain / 10 * 10) } }"},  // rounds
      {"gain rw { default { (gain + 1) } }"},           // from the value before
      {"gain rw { default (gain > 5) { 5 } }"},
      {"gain rw { rangeValid { 0..9 } rangeDoc { 0..(gain) } }"},
      // channel 1 limits the others
      {"c index { rangeValid { 1..2 } } gain rw { index { c } rangeValid { 0..(gain[1]) } }"},
      // accepts by a property of the value
      {"mode rw { rangeValid (vidStd::mode::fr == 25) { (mode) } }"},
      {"mode rw { rangeValid { 0..9 } } gain rw { rangeValid { 0..(mode) } ctrlRO (mode == 1) }"},
  };
  expectFound(checkSelfReference, cases);
}

TEST(SelfReference, IsWhatTheEngineDoes) {
  const std::string_view span = "gain rw { rangeValid { 0..(gain) } }";
  EXPECT_EQ(heldAfter(span, {{"gain", "77"}}, "gain"), "77");
  EXPECT_EQ(heldAfter(span, {{"gain", "-5"}}, "gain"), "-5");
  const std::string_view latch = "on rw { rangeValid { 0..1 } ctrlRO (on == 1) }";
  EXPECT_EQ(heldAfter(latch, {{"on", "1"}}, "on"), "");
  EXPECT_EQ(heldAfter(latch, {{"!on", "1"}, {"on", "0"}}, "on"), "0");
  const std::string_view valid = "on rw { rangeValid { 0..9 } ctrlValid (on < 5) }";
  EXPECT_EQ(heldAfter(valid, {{"on", "3"}, {"on", "7"}}, "on"), "3");
}

}  // namespace
