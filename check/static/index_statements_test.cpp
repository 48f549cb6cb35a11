#include "check/static/static_test.h"

namespace {

TEST(IndexStatements, ArePassedOverWhereTheyAreForParameters) {
  const StaticCase cases[] = {
      {"i index { rangeValid { 1..4 } default { 2 } } n rw { index { i } default { 1 } }",
       {"1:31 default"}},
      {"n rw { } i index { rangeValid { 1..4 } ctrlRO (n) }", {"1:40 ctrlRO"}},
      {"i index { rangeDoc { 1..2 } rangeValid { 1..4 } }", {"1:11 rangeDoc"}},
      {"n rw { } i index { rangeValid { 1..4 } rangeValid (n) { 1 } ctrlValid (n) valueChange { "
       "\"x\" -> 1 } }"},
      {"a rw { rangeValid { 1..4 } rangeDoc { 1..2 } default { 2 } ctrlRO (a) }"},
  };
  expectFound(checkIndexStatements, cases);
}

TEST(IndexStatements, AreNotAskedByTheEngine) {
  const std::string_view text =
      "n rw { } i index { rangeValid { 1..4 } ctrlRO (n) } a rw { index { i } }";
  EXPECT_EQ(heldAfter(text, {{"n", "1"}, {"a[2]", "5"}}, "a[2]"), "5");
}

}  // namespace
