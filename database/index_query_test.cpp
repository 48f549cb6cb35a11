#include "database/index_query.h"

#include <gtest/gtest.h>

#include <random>

#include "database/gather.h"
#include "database/transaction.h"
#include "sw/parm/present_bounds.h"
#include "tests/support/database.h"

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
huge index {
  rangeValid { -2147483648..2147483647 }
  rangeValid (mode == "on") { 5..2000000000, "x" }
  rangeValid (mode == "on") { "7", "0x10", "3" }
  rangeValid (mode == "count") { (count)..(count + 2000000000) }
  valueChange { 100 -> 1 }
  valueChange { "0x200" -> "1" }
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
      {"moved", "", INDEX_RANGE_FOUND, {}, {{1, 2}, {4, 4}}},  // 3 is translated to 9
      {"narrowed", "odd", INDEX_RANGE_FOUND, {"x"}, {{1, 1}, {3, 3}, {5, 5}}},
      {"narrowed", "count", INDEX_RANGE_FOUND, {}, {{0, 3}, {9, 9}}},
      {"narrowed", "none", INDEX_RANGE_FOUND, {}, {}},  // conditional bounds, none applies
      {"huge", "on", INDEX_RANGE_FOUND, {}, {{3, 3}, {5, 99}, {101, 2000000000}}},
      {"huge", "count", INDEX_RANGE_FOUND, {}, {{4, 99}, {101, 2000000004}}},
      {"valid", "on", INDEX_RANGE_FOUND, {}, {{0, 1}}},
      {"valid", "off", INDEX_RANGE_NOT_AVAILABLE, {}, {}},
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

// A random index over small numbers, with ranges of every kind and translations.
std::string randomIndex(std::mt19937& random) {
  const auto number = [&] { return std::to_string(static_cast<int>(random() % 30) - 5); };
  const auto item = [&]() -> std::string {
    switch (random() % 4) {
      case 0:
        return number();
      case 1:
        return "\"" + number() + "\"";
      case 2:
        return "(low).." + std::to_string(random() % 30);
      default:
        return number() + ".." + std::to_string(25 + random() % 5);
    }
  };
  std::string text = "i index { rangeValid { " + number() + ", " + number() + "..28 }\n";
  for (size_t count = random() % 3; count > 0; --count) {
    text += "rangeValid (mode != " + number() + ") { " + item() + ", " + item() + " }\n";
  }
  if (random() % 2 == 0) text += "valueChange { \"" + number() + "\" -> \"" + number() + "\" }\n";
  return text + "}\nmode rw { }\nlow rw { }\n";
}

TEST(IndexQuery, AnswersAsIfEveryNumberHadBeenAsked) {
  std::mt19937 random(1);
  for (int round = 0; round < 2000; ++round) {
    const std::string text = randomIndex(random);
    SCOPED_TRACE(text);
    Database database;
    define(database, text);
    Transaction transaction(database);
    EXPECT_EQ(transaction.set("low", std::to_string(random() % 30), false), STAGE_DONE);
    const IndexEntry& entry = *database.findIndexEntry("i");
    const Situation situation = gather(entry, transaction.staged());
    BoundsCheck check(*entry.index, situation);
    BoundsInteger expected;
    for (const Span& span : entry.index->baseBounds().integers().spans()) {
      for (int value = span.first; value <= span.second; ++value) {
        if (entry.index->checkValue(std::to_string(value), check)) {
          EXPECT_EQ(expected.addSpan(value, value), 0);
        }
      }
    }
    std::vector<std::string> texts;
    Spans spans;
    ASSERT_EQ(indexRange(database, transaction.staged(), "i", texts, spans), INDEX_RANGE_FOUND);
    ASSERT_EQ(spans, expected.spans());
  }
}

TEST_F(IndexQueryTest, NamesTheIndicesThatExistNow) {
  const ParmDef& parm = database_.findParm("parm")->parm;
  EXPECT_EQ(validIndices(database_, transaction_.staged(), parm),
            (std::vector<std::string>{"plain"}));
  EXPECT_EQ(transaction_.set("mode", "on", false), STAGE_DONE);
  EXPECT_EQ(validIndices(database_, transaction_.staged(), parm),
            (std::vector<std::string>{"plain", "valid"}));
  EXPECT_TRUE(
      validIndices(database_, transaction_.staged(), database_.findParm("single")->parm).empty());
}

TEST(IndexRange, OfMoreThanFitsIntoAMessageIsTooMuch) {
  // Texts of 1 MiB and spans of 8 bytes.
  struct Case {
    const char* subject;
    size_t texts;
    size_t spans;
    int result;
  };
  constexpr size_t MEBIBYTE = size_t{1} << 20U;
  constexpr size_t ALL = MAX_QUERY_BYTES / MEBIBYTE;
  const Case cases[] = {{"as many as fit", ALL, 0, INDEX_RANGE_FOUND},
                        {"one text more", ALL + 1, 0, INDEX_RANGE_TOO_LARGE},
                        {"a span more", ALL, 1, INDEX_RANGE_TOO_LARGE}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.subject);
    std::string text = "i index {\n";
    for (size_t i = 0; i < c.texts; ++i) {
      text +=
          "rangeValid { \"" + std::to_string(10 + i) + std::string(MEBIBYTE - 2, 'x') + "\" }\n";
    }
    if (c.spans > 0) text += "rangeValid { 0..9 }\n";
    Database database;
    define(database, text + "}\n");
    std::vector<std::string> texts;
    Spans spans;
    EXPECT_EQ(indexRange(database, StagedValues(), "i", texts, spans), c.result);
  }
}

TEST(IndexRange, OfMoreSpansThanFitIntoAMessageIsTooMuch) {
  DefinitionParts parts;
  parts.name = "even";
  constexpr int MANY = static_cast<int>(MAX_QUERY_BYTES / sizeof(Span)) + 2;
  for (int i = 0; i < MANY; ++i) EXPECT_EQ(parts.baseBounds.integers().addSpan(2 * i, 2 * i), 0);
  Database database;
  EXPECT_EQ(database.registerIndex(std::make_unique<IndexDef>(std::move(parts))), 0);
  std::vector<std::string> texts;
  Spans spans;
  EXPECT_EQ(indexRange(database, StagedValues(), "even", texts, spans), INDEX_RANGE_TOO_LARGE);
}

}  // namespace
