#include "deflang/text/comments.h"

#include <gtest/gtest.h>

#include "deflang/text/text_cursor.h"

namespace {

TEST(Comments, AreLinesThatBeginWithTheSign) {
  const struct {
    const char* line;
    const char* comment;  // null: none
  } cases[] = {
      {"# The gain.\n", "The gain."},
      {"  #\tThe gain. \r\n", "The gain."},
      {"#\n", ""},
      {"##x", "#x"},
      {"gain rw { } # no", nullptr},
      {"", nullptr},
      {"\n", nullptr},
  };
  for (const auto& [line, comment] : cases) {
    const auto found = commentIn(line);
    EXPECT_EQ(found.has_value(), comment != nullptr) << line;
    if (comment != nullptr) {
      EXPECT_EQ(found.value_or("none"), comment) << line;
    }
  }
}

TEST(Comments, BeginSections) {
  const struct {
    const char* comment;
    const char* title;
  } cases[] = {
      {"---- Picture ----", "Picture"},
      {"== Picture", "Picture"},
      {"- Picture", ""},
      {"Picture ----", ""},
      {"----", ""},
      {"", ""},
  };
  for (const auto& [comment, title] : cases) EXPECT_EQ(sectionTitle(comment), title) << comment;
}

TEST(Comments, DescribeTheLineBehindThem) {
  constexpr std::string_view TEXT =
      "# lost\n"
      "\n"
      "# ---- Picture ----\n"
      "# The gain.\n"
      "#\n"
      "# check: allow octal\n"
      "  # 1000 is unity.\n"
      "gain rw { }\n"
      "level rw { }\n"
      "# first\n"
      "# ----\n"
      "# second\n"
      "hue rw { }\n"
      "# nothing follows\n";
  const TextCursor::NextLine next = linesIn(TEXT);
  LeadingComments comments;
  std::string_view line;
  while (next(line)) comments.add(line);
  const struct {
    uint32_t number;
    const char* text;
  } cases[] = {
      {0, ""}, {1, ""},  {2, ""},        {8, "The gain.\n\n1000 is unity."},
      {9, ""}, {11, ""}, {13, "second"}, {15, ""},
  };
  for (const auto& [number, text] : cases) EXPECT_EQ(comments.before(number), text) << number;
}

}  // namespace
