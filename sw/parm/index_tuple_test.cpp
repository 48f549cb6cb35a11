#include "sw/parm/index_tuple.h"

#include <gtest/gtest.h>

namespace {

TEST(IndexSuffix, PutsEachValueInBrackets) {
  EXPECT_EQ(indexSuffix({}), "");
  EXPECT_EQ(indexSuffix({"2"}), "[2]");
  EXPECT_EQ(indexSuffix({"1", "left", ""}), "[1][left][]");
  EXPECT_EQ(indexSuffix({"a]b"}), "[a]b]");  // values are left as they are
}

}  // namespace
