#include "check/static/static_test.h"

namespace {

TEST(UnusedIndices, AreThoseThatNothingNames) {
  const StaticCase cases[] = {
      {"channel index { rangeValid { 1..2 } }\n", {"1:1 channel"}},
      {"channel index { rangeValid { 1..2 } }\ngain rw { index { channel } }\n"},
      {"gain rw { index { channel } }\nchannel index { rangeValid { 1..2 } }\n"},
      // one that another index asks for
      {"a index { rangeValid { 1..2 } }\n"
       "b index { rangeValid { 1..2 } rangeValid (a == 1) { 1 } }\n"
       "gain rw { index { b } }\n"},
      // but not one that only asks for itself
      {"a index { rangeValid { 1..2 } ctrlValid (a == 1) }\n", {"1:1 a"}},
      {"gain rw { }\n"},
  };
  expectFound(checkUnusedIndices, cases);
}

}  // namespace
