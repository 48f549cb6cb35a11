#include "check/static/static_test.h"

namespace {

constexpr std::string_view INDEX =
    "c index { rangeValid { 1..2 } }\nmode rw { rangeValid { 0..1 } }\n";

TEST(OwnIndices, HaveNoValueBeforeTheyAreBound) {
  struct Row {
    std::string_view text;
    std::vector<std::string> found;
  };
  const Row rows[] = {
      {"gain rw { index { c } ctrlValid (c == 1) }", {"3:34 c"}},
      {"gain rw { index { c } ctrlValid (c == 1 || c == 2) ctrlValid (mode || c) }",
       {"3:34 c", "3:71 c"}},
      {"gain rw { index { c } ctrlRO (c == 1) rangeValid (c == 1) { 0..(c) } default { (c) } }",
       {}},
      {"gain rw { index { c } ctrlValid (mode == 1) }", {}},
      {"side index { rangeValid { 1..2 } ctrlValid (side == 1) }", {"3:45 side"}},
      {"side index { rangeValid { 1..2 } rangeValid (side == 1) { 1 } }", {"3:46 side"}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.text);
    EXPECT_EQ(placesOf(checkOwnIndices, std::string(INDEX) + std::string(row.text)), row.found);
  }
}

TEST(OwnIndices, MakeAConditionNeverTrueWhereTheyAreNeeded) {
  const auto saysNever = [](std::string_view condition) {
    const std::string text =
        std::string(INDEX) + "gain rw { index { c } ctrlValid (" + std::string(condition) + ") }";
    return messagesOf(checkOwnIndices, text).at(0).find("never true") != std::string::npos;
  };
  EXPECT_TRUE(saysNever("c == 1"));
  EXPECT_TRUE(saysNever("c"));
  EXPECT_TRUE(saysNever("mode || c > 1"));
  EXPECT_FALSE(saysNever("mode || c"));
  EXPECT_FALSE(saysNever("mode && c"));
}

TEST(OwnIndices, AreAsTheEngineSeesThem) {
  const std::string text = std::string(INDEX) +
                           "gain rw { index { c } ctrlValid (c == 1) }\n"
                           "trim rw { index { c } ctrlValid (mode || c) }\n";
  EXPECT_EQ(heldAfter(text + "look ro { rangeValid { (gain[1] + 100) } }",
                      {{"gain[1]", "5"}, {"!look", "0"}}, "look"),
            "100");
  EXPECT_EQ(heldAfter(text, {{"mode", "1"}, {"trim[1]", "5"}}, "trim[1]"), "5");
}

}  // namespace
