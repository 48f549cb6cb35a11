#include "check/static/static_test.h"

namespace {

constexpr std::string_view INDICES =
    "c index { rangeValid { 1..8 } valueChange { \"main\" -> 1 } }\n"
    "s index { rangeValid { \"left\", \"right\" } }\n"
    "gain rw { index { c } rangeValid { 0..100 } }\n"
    "level rw { index { c, s } rangeValid { 0..100 } }\n";

TEST(ForeignIndices, MeanNoInstance) {
  struct Row {
    std::string_view text;
    std::vector<std::string> found = {};
  };
  const Row rows[] = {
      {"x rw { rangeValid { 0..(gain) } }", {"5:25 gain"}},
      {"x rw { index { s } ctrlRO (gain == 1 || gain == 2) }", {"5:28 gain"}},
      {"x rw { index { c } ctrlRO (level) }", {"5:28 level"}},
      {"x rw { rangeValid { 0..(vidStd::gain::spal) } }", {"5:25 vidStd::gain::spal"}},
      {"x rw { rangeValid { 0..(gain[1]) } ctrlRO (level[1][left]) }"},
      {"x rw { index { c } rangeValid { 0..(gain) } }"},
      {"x rw { index { s, c } rangeValid { 0..(level) } }"},
      {"x rw { rangeValid { 0..(vidStd::gain[1]::spal) } }"},
      // an index value is compared as it is written
      {"x rw { ctrlRO (gain[0x2]) }", {"5:16 gain[0x2]"}},
      {"x rw { ctrlRO (gain[main]) }", {"5:16 gain[main]"}},
      {"x rw { ctrlRO (gain[ 2 ]) }"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.text);
    EXPECT_EQ(placesOf(checkForeignIndices, std::string(INDICES) + std::string(row.text)),
              row.found);
  }
}

TEST(ForeignIndices, MatterForWhatAnIndexNames) {
  const StaticCase cases[] = {
      {"c index { rangeValid { 1..2 } }\n"
       "on rw { index { c } rangeValid { 0..1 } }\n"
       "s index { rangeValid { 1..2 } ctrlValid (on == 1) }\n"
       "x rw { index { s } }\n",
       {"3:42 on"}},
      {"c index { rangeValid { 1..2 } }\n"
       "on rw { index { c } rangeValid { 0..1 } }\n"
       "s index { rangeValid { 1..2 } ctrlValid (on == 1) }\n"
       "x rw { index { s, c } }\n"},
      // an index knows the values of those before it
      {"c index { rangeValid { 1..2 } }\n"
       "s index { rangeValid { 1..2 } rangeValid (c == 1) { 1 } }\n"
       "x rw { index { s, c } }\n",
       {"2:43 c"}},
      {"c index { rangeValid { 1..2 } }\n"
       "s index { rangeValid { 1..2 } rangeValid (c == 1) { 1 } }\n"
       "x rw { index { c, s } }\n"},
  };
  expectFound(checkForeignIndices, cases);
}

TEST(ForeignIndices, ProposeAnInstance) {
  const std::string text = std::string(INDICES) + "x rw { ctrlRO (level) }";
  EXPECT_EQ(messagesOf(checkForeignIndices, text).at(0),
            "\"level\" has the index \"c\" and \"x\" has not, so this is no instance and reads as "
            "0; give \"x\" that index, too, or write an index value, such as level[1][left]");
}

TEST(ForeignIndices, ReadAs0) {
  const std::string text = std::string(INDICES) +
                           "x ro { rangeValid { (gain + 1000) } }\n"
                           "y ro { rangeValid { (gain[0x2] + 1000) } }\n"
                           "z ro { rangeValid { (gain[main] + 1000) } }\n";
  const std::vector<Set> sets = {
      {"gain[1]", "1"}, {"gain[2]", "2"}, {"!x", "0"}, {"!y", "0"}, {"!z", "0"}};
  for (const char* name : {"x", "y", "z"}) EXPECT_EQ(heldAfter(text, sets, name), "1000") << name;
}

}  // namespace
