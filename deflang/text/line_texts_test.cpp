#include "deflang/text/line_texts.h"

#include <gtest/gtest.h>

#include <string>

namespace {

TEST(LineTexts, KeepsLinesByNumber) {
  LineTexts lines;
  EXPECT_FALSE(lines.find(1).has_value());
  lines.add(1, "gain rw {\n");
  lines.add(4, "}");
  EXPECT_EQ(lines.find(1), "gain rw {\n");
  EXPECT_EQ(lines.find(4), "}");
  for (const uint32_t number : {0U, 2U, 3U, 5U, UINT32_MAX}) {
    SCOPED_TRACE(number);
    EXPECT_FALSE(lines.find(number).has_value());
  }
}

TEST(LineTexts, ReplacesALineThatIsKeptAgain) {
  LineTexts lines;
  lines.add(2, "old\n");
  lines.add(2, "newer\n");
  EXPECT_EQ(lines.find(2), "newer\n");
}

TEST(LineTexts, TakesLinesInAnyOrder) {
  LineTexts lines;
  for (const uint32_t number : {7U, 3U, UINT32_MAX, 0U, 5U}) {
    lines.add(number, std::to_string(number));
  }
  for (const uint32_t number : {7U, 3U, UINT32_MAX, 0U, 5U}) {
    EXPECT_EQ(lines.find(number), std::to_string(number));
  }
  EXPECT_FALSE(lines.find(4).has_value());
}

}  // namespace
