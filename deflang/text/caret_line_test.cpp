#include "deflang/text/caret_line.h"

#include <gtest/gtest.h>

#include "tests/support/print.h"

namespace {

TEST(CaretLine, RepeatsTheLineAndMarksTheColumn) {
  struct Case {
    std::string_view line;
    size_t column;
    std::string_view text;
  };
  const Case cases[] = {
      {"gain xx {\n", 5, "gain xx {\n     ^\n"},
      {"gain xx {", 5, "gain xx {\n     ^\n"},  // the last line of a text may have no newline
      {"x\n", 0, "x\n^\n"},
      {"\tx\n", 1, "\tx\n ^\n"},  // columns are bytes: a tab is one blank
      {"", 0, "\n^\n"},
      {std::string_view("a\0b\n", 4), 1, std::string_view("a\0b\n ^\n", 7)},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.line);
    EXPECT_EQ(printed([&c](FILE* out) { printCaretLine(out, c.line, c.column); }), c.text);
  }
}

}  // namespace
