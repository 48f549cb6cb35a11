#include "deflang/text/bare_number.h"

#include <gtest/gtest.h>

#include <climits>

#include "tests/support/reader.h"

namespace {

constexpr StopSet STOPS(",}");

TEST(BareNumber, IsTheWholeWord) {
  struct Case {
    std::string_view line;
    int32_t number;
    size_t column;
  };
  const Case cases[] = {
      {"0", 0, 1},
      {"255}", 255, 3},
      {"255,", 255, 3},
      {"255 x", 255, 3},
      {"-12\n", -12, 3},
      {"+12", 12, 3},
      {"0x1F}", 31, 4},
      {"017", 15, 3},
      {"2147483647", INT32_MAX, 10},
      {"-2147483648", INT32_MIN, 11},
      {"2147483648", INT32_MIN, 10},  // the low 32 bits of a long
      {"4294967301", 5, 10},
      {"99999999999999999999", -1, 20},  // those of the greatest long
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.line);
    Cursor cursor(c.line, 1, testMemory());
    int32_t number = 4711;
    EXPECT_EQ(readBareNumber(cursor, STOPS, number), PARSE_DONE);
    EXPECT_EQ(number, c.number);
    EXPECT_EQ(cursor.column(), c.column);
  }
}

TEST(BareNumber, FailsAtTheFirstCharacterOfNoNumber) {
  struct Case {
    std::string_view line;
    size_t column;
  };
  const Case cases[] = {
      {"}", 0},                  // a missing number
      {"", 0},                   // at the end of a line
      {"x12", 0},                // from the start
      {"12ab}", 2}, {"0x}", 1},  // "0" is a number, "x" without digits adds nothing
      {"0xfg", 3},  {"089", 1},  // octal
      {"1.5", 1},   {"-", 0},   {"--5", 0}, {"5\"", 1}, {"\xb2", 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.line);
    Cursor cursor(c.line, 1, testMemory());
    int32_t number = 4711;
    EXPECT_EQ(readBareNumber(cursor, STOPS, number), PARSE_SYNTAX_ERROR);
    EXPECT_EQ(number, 4711);
    EXPECT_EQ(cursor.column(), c.column);
  }
}

}  // namespace
