#include "doc/matrix.h"

#include <gtest/gtest.h>

#include "doc/testing.h"

namespace {

DocStandardCell cell(const Spans& spans, const std::vector<std::string>& texts,
                     const std::string& value) {
  return {true, true, spans, texts, false, value};
}

TEST(Matrix, ACellHasItsRangeInOneLine) {
  EXPECT_EQ(rangeText(cell({{0, 9}, {12, 12}}, {"off"}, "")), "0 … 9, 12, off");
  EXPECT_EQ(rangeText(cell({}, {}, "")), "any value");
  EXPECT_EQ(rangeText({}), "");
  EXPECT_EQ(rangeText({true, true, {{0, 9}}, {"a"}, true, ""}), "0 … 9, a, …");
}

TEST(Matrix, HasARowForEachParameter) {
  DocModel model = modelOf("mode rw { }\na rw { rangeValid { 0..(vidStd::mode::spal) } }\n");
  EXPECT_EQ(matrixHtml(model), "");
  model.standards = {
      {"mode",
       {"<525>", "625"},
       {{"a", "", {cell({{0, 7}}, {}, "5"), {}}},
        {"a", "[1] [2]", {cell({{3, 3}}, {}, "3"), {true, false, {}, {}, false, ""}}}}}};
  const std::string html = matrixHtml(model);
  const std::string expected =
      "<table><caption>By the standard of <a href=\"#p-mode\">mode</a></caption>\n"
      "<thead><tr><th scope=col>Parameter<th scope=col>&lt;525&gt;<th "
      "scope=col>625</thead><tbody>\n"
      "<tr><th scope=row><a href=\"#p-a\">a</a><td>0 … 7<br><span class=c>default</span> 5"
      "<td class=no>absent\n"
      "<tr><th scope=row><a href=\"#p-a\">a</a> <span class=c>[1] [2]</span><td>3"
      "<td><span class=no>no range</span>\n"
      "</tbody></table></div>\n</section>\n";
  EXPECT_TRUE(html.ends_with(expected)) << html;
}

}  // namespace
