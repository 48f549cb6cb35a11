#include "doc/short_text.h"

#include <gtest/gtest.h>

namespace {

TEST(ShortText, HasNoMoreCharactersThanItMay) {
  const struct {
    const char* text;
    size_t most;
    const char* shortened;
  } cases[] = {
      {"", 1, ""},        {"abc", 3, "abc"}, {"abcd", 3, "ab…"},   {"äöü", 3, "äöü"},
      {"äöüß", 3, "äö…"}, {"ab", 1, "…"},    {"a→b→c", 4, "a→b…"},
  };
  for (const auto& c : cases) EXPECT_EQ(shortened(c.text, c.most), c.shortened) << c.text;
}

}  // namespace
