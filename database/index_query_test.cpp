#include "database/index_query.h"

#include <gtest/gtest.h>

#include "database/test_database.h"
#include "database/transaction.h"

namespace {

constexpr std::string_view TEXT = R"(
count rw { }
mode rw { }
plain index { rangeValid { 0..2147483647, "all" } }
mixed index { rangeValid { 10..12, "5", "x" } }
moved index { rangeValid { 1..4 } valueChange { 3 -> 9 } }
narrowed index {
  rangeValid { 0..9, "x", "y" }
  rangeValid (mode == "odd") { 1, 3, 5, "x" }
  rangeValid (mode == "count") { 0..(count - 1), 9 }
}
valid index { ctrlValid (mode == "on") rangeValid { 0..1 } }
parm rw { index { plain, valid } }
single rw { }
)";

class IndexQueryTest : public testing::Test {
 protected:
  void SetUp() override { define(database_, TEXT); }

  Database database_;
  Transaction transaction_{database_};
};

TEST_F(IndexQueryTest, FindsTheValuesThatAnIndexTakesNow) {
  struct Case {
    const char* index;
    std::string mode;
    int result;
    std::vector<std::string> texts;
    Spans spans;
  };
  const Case cases[] = {
      {"plain", "", INDEX_RANGE_FOUND, {"all"}, {{0, 2147483647}}},
      {"mixed", "", INDEX_RANGE_FOUND, {"x"}, {{10, 12}}},     // 5 is a number outside the span
      {"moved", "", INDEX_RANGE_FOUND, {}, {{1, 2}, {4, 4}}},  // 3 stands for 9
      {"narrowed", "odd", INDEX_RANGE_FOUND, {"x"}, {{1, 1}, {3, 3}, {5, 5}}},
      {"narrowed", "count", INDEX_RANGE_FOUND, {}, {{0, 3}, {9, 9}}},
      {"narrowed", "none", INDEX_RANGE_FOUND, {}, {}},  // conditional bounds, none applies
      {"valid", "on", INDEX_RANGE_FOUND, {}, {{0, 1}}},
      {"valid", "off", INDEX_RANGE_NOT_VALID, {}, {}},
      {"mode", "", INDEX_RANGE_NO_INDEX, {}, {}},
      {"none", "", INDEX_RANGE_NO_INDEX, {}, {}},
  };
  EXPECT_EQ(transaction_.set("count", "4", false), STAGE_DONE);
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.index) + " in mode " + c.mode);
    EXPECT_EQ(transaction_.set("mode", c.mode, false), STAGE_DONE);
    std::vector<std::string> texts;
    Spans spans;
    EXPECT_EQ(indexRange(database_, transaction_.staged(), c.index, texts, spans), c.result);
    EXPECT_EQ(texts, c.texts);
    EXPECT_EQ(spans, c.spans);
  }
}

TEST_F(IndexQueryTest, NamesTheIndicesThatExistNow) {
  const ParmDef& parm = *database_.findParm("parm")->parm;
  EXPECT_EQ(validIndices(database_, transaction_.staged(), parm),
            (std::vector<std::string>{"plain"}));
  EXPECT_EQ(transaction_.set("mode", "on", false), STAGE_DONE);
  EXPECT_EQ(validIndices(database_, transaction_.staged(), parm),
            (std::vector<std::string>{"plain", "valid"}));
  EXPECT_TRUE(
      validIndices(database_, transaction_.staged(), *database_.findParm("single")->parm).empty());
}

}  // namespace
