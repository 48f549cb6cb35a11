#include "doc/html.h"

#include <gtest/gtest.h>

#include "doc/testing.h"

namespace {

TEST(Html, TextsAreNeverMarkup) {
  EXPECT_EQ(escaped("a & b"), "a &amp; b");
  EXPECT_EQ(escaped("</script><b x='\">"), "&lt;/script&gt;&lt;b x=&#39;&quot;&gt;");
  EXPECT_EQ(escaped("grün"), "grün");
}

TEST(Html, AFragmentHasOnlyWhatAnAddressMayHave) {
  EXPECT_EQ(fragment("p", "crop_left.2~-"), "#p-crop_left.2~-");
  EXPECT_EQ(fragment("i", "a\"b%<ü"), "#i-a%22b%25%3C%C3%BC");
}

TEST(Html, NamesAreLinksWhereTheyAreDefined) {
  const DocModel model = modelOf(
      "a rw { }\n"
      "i index { rangeValid { 1..2 } }\n"
      "b rw { index { i } rangeValid (a == MODEL) { 1 } }\n",
      {{"MODEL", "x"}});
  const struct {
    const char* name;
    const char* html;
  } cases[] = {
      {"a", "<a href=\"#p-a\">a</a>"},   {"b[1]", "<a href=\"#p-b\">b[1]</a>"},
      {"i", "<a href=\"#i-i\">i</a>"},   {"MODEL", "<code>MODEL</code>"},
      {"<i>", "<code>&lt;i&gt;</code>"},
  };
  for (const auto& c : cases) {
    std::string html;
    appendName(html, model, c.name);
    EXPECT_EQ(html, c.html);
  }
  std::string html;
  appendSentence(html, model, model.find("b")->ranges[0].condition);
  EXPECT_EQ(html, "<a href=\"#p-a\">a</a> is <code>MODEL</code>");
  html.clear();
  appendSentence(html, model, {{PART_OF_TEXT, "<b>"}, {PART_OF_WORDS, " & "}});
  EXPECT_EQ(html, "<q>&lt;b&gt;</q> &amp; ");
}

}  // namespace
