#include "sw/parm/build/range_items.h"

#include <gtest/gtest.h>

#include "tests/support/build.h"

namespace {

// The first range statement of `text`, classified.
class ClassifiedItems {
 public:
  explicit ClassifiedItems(const std::string& items)
      : parsed_(parseText("p rw { rangeValid { " + items + " } }\n")),
        context_(diagnostics_, parsed_.records, parsed_.lines, registry_, false),
        draft_(context_, *parsed_.records.find("p")),
        items_(classifyItems(statement().items, draft_)) {}

  RangeItems& items() { return items_; }
  int result() const { return context_.result(); }
  // The bounds of the items where "p" holds `value`.
  std::string text(const std::string& value) {
    const std::unique_ptr<Bounds> bounds = makeBounds(classifyItems(statement().items, draft_));
    const auto* computed = dynamic_cast<const BoundsExpression*>(bounds.get());
    if (computed == nullptr) return itemsText(dynamic_cast<const BoundsParm&>(*bounds));
    Situation situation(draft_.parts.variables.size());
    situation.bind(*draft_.parts.variables.find("p"), operandOf(value));
    BoundsParm present;
    EXPECT_EQ(computed->evaluate(present, situation), 0);
    return "= " + itemsText(present);
  }

 private:
  DefinitionText parsed_;
  TestRegistry registry_;
  DiagnosticCollector diagnostics_;
  BuildContext context_;
  DefinitionDraft draft_;
  [[nodiscard]] const RangeStatement& statement() const {
    return draft_.record().rangeValid.front();
  }

  RangeItems items_;
};

struct ItemCase {
  const char* items;
  const char* value;  // of "p"
  size_t count;
  bool runTime;
  const char* text;
};

TEST(RangeItems, AreComputedWhereOneOfThemIs) {
  const ItemCase cases[] = {
      {"", "", 0, false, ""},
      {"3, 1..2", "", 2, false, "1..3"},
      {"\"3\", (\"4\"), \"a\"", "", 3, false, "4, \"3\", \"a\""},
      {"3, (p)", "7", 2, true, "= 3, 7"},
      {"3, (p)", "x", 2, true, "= 3, \"x\""},
      {"(p)..9", "7", 1, true, "= 7..9"},
      {"0..(p + 1)", "7", 1, true, "= 0..8"},
      {"(p)..(p)", "7", 1, true, "= 7"},
      {"\"7\", (p)", "7", 2, true, "= 7, \"7\""},
  };
  for (const ItemCase& c : cases) {
    SCOPED_TRACE(c.items);
    ClassifiedItems classified(c.items);
    EXPECT_EQ(classified.result(), 0);
    EXPECT_EQ(classified.items().items.size(), c.count);
    EXPECT_EQ(classified.items().runTime, c.runTime);
    EXPECT_EQ(classified.text(c.value), c.text);
  }
}

TEST(RangeItems, LeaveOutWhatIsNoItem) {
  ClassifiedItems classified("9..0, 3, \"\", (), (1 / 0), (p)..(\"a\"), 5");
  EXPECT_EQ(classified.result(), -1);
  EXPECT_FALSE(classified.items().runTime);
  EXPECT_EQ(classified.text(""), "3, 5");
}

TEST(RangeItems, AddConstantsToWhatIsThere) {
  BoundsParm bounds;
  ASSERT_EQ(bounds.addValue("1"), 0);
  addConstants(ClassifiedItems("2, \"a\"").items().items, bounds);
  addConstants({}, bounds);
  EXPECT_EQ(itemsText(bounds), "1..2, \"a\"");
}

}  // namespace
