#include "check/static/static_test.h"

namespace {

TEST(EmptyTexts, AreNeverEqualToAValue) {
  const StaticCase cases[] = {
      {"a rw { } b rw { ctrlRO (a == \"\") }", {"1:30 \"\""}},
      {"a rw { } b rw { ctrlRO (\"\" != a) }", {"1:25 \"\""}},
      {"a rw { } b rw { ctrlRO (a == 1 && (a) != \"\") }", {"1:42 \"\""}},
      {"a rw { } b rw { ctrlRO (a > \"\" || a $ \"\") }", {"1:29 \"\"", "1:39 \"\""}},
      {"a rw { } b rw { rangeValid (a == \"\") { 0..9 } default { (a != \"\") } }",
       {"1:34 \"\"", "1:63 \"\""}},
      {"a rw { } b rw { ctrlRO (a == \"x\" || a == 0) default { \"\" } }"},
      {"a rw { } b rw { default { (a + \"\") } ctrlRO (\"\" == \"\" && a) }"},
  };
  expectFound(checkEmptyTexts, cases);
}

TEST(EmptyTexts, AreProposedAs0WhereEqualityIsAsked) {
  const std::vector<std::string> proposed = {"\"\" -> 0", "\"\" -> 0"};
  EXPECT_EQ(
      proposalsOf(checkEmptyTexts,
                  "a rw { } b rw { ctrlRO (a == \"\") ctrlRO (a != \"\") ctrlRO (a > \"\") }"),
      proposed);
}

// What the messages say, for values that are unset, empty, numbers and texts.
TEST(EmptyTexts, AreComparedSoByTheEngine) {
  struct Row {
    std::string comparison;
    bool isTrue;
  };
  const Row rows[] = {
      {"a == \"\"", false}, {"a != \"\"", true},  {"a > \"\"", true}, {"a >= \"\"", true},
      {"a < \"\"", false},  {"a <= \"\"", false}, {"\"\" < a", true}, {"\"\" <= a", true},
      {"\"\" > a", false},  {"\"\" >= a", false}, {"a $ \"\"", true},
  };
  for (const Row& row : rows) {
    const std::string text = "a rw { } b rw { ctrlRO (" + row.comparison + ") }";
    const std::string message = messagesOf(checkEmptyTexts, text).at(0);
    EXPECT_EQ(message.find("always") != std::string::npos, row.isTrue) << message;
    const std::string device = "a rw { } b ro { rangeValid { (" + row.comparison + ") } }";
    const std::string result = row.isTrue ? "1" : "0";
    for (const std::string value : {"", "0", "-7", "0x10", "word"}) {
      SCOPED_TRACE(row.comparison + " with " + value);
      EXPECT_EQ(heldAfter(device, {{"!b", "9"}, {"a", value}}, "b"), result);
    }
  }
}

}  // namespace
