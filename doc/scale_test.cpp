#include "doc/scale.h"

#include <gtest/gtest.h>

namespace {

DocRange rangeOf(const Spans& spans) {
  DocRange range;
  for (const Span& span : spans) range.items.push_back({.span = span, .text = {}});
  return range;
}

std::string pathsOf(const Spans& spans, const Span& extent, std::optional<int> mark = {}) {
  std::string html;
  appendScale(html, rangeOf(spans), extent, mark);
  const size_t first = html.find("/><path d=");
  return first == std::string::npos ? html : html.substr(first + 2);
}

TEST(Scale, HasTheEndsOfAllRanges) {
  EXPECT_EQ(extentOf({rangeOf({{0, 9}, {20, 29}}), rangeOf({{-5, 3}})}), Span(-5, 29));
  EXPECT_EQ(extentOf({rangeOf({})}), std::nullopt);
  EXPECT_EQ(extentOf({rangeOf({{7, 7}})}), std::nullopt);
  EXPECT_EQ(extentOf({rangeOf({{INT32_MIN, 0}, {5, INT32_MAX}})}), Span(INT32_MIN, INT32_MAX));
}

TEST(Scale, ShowsSpansAndGapsToScale) {
  EXPECT_EQ(pathsOf({{0, 99}}, {0, 399}), "<path d=\"M0 4h100v6h-100z\"/></svg>");
  EXPECT_EQ(pathsOf({{0, 99}, {300, 399}}, {0, 399}),
            "<path d=\"M0 4h100v6h-100zM300 4h100v6h-100z\"/></svg>");
  // A span that is hardly seen is wider, and stays within the bar.
  EXPECT_EQ(pathsOf({{INT32_MAX, INT32_MAX}}, {INT32_MIN, INT32_MAX}),
            "<path d=\"M397 4h3v6h-3z\"/></svg>");
  EXPECT_EQ(pathsOf({}, {0, 9}), "");
}

TEST(Scale, MarksTheDefaultWhereItIsOnTheScale) {
  const std::string bar = "<path d=\"M0 4h400v6h-400z\"/>";
  EXPECT_EQ(pathsOf({{0, 399}}, {0, 399}, 200),
            bar + "<path class=m d=\"M199 0h2v14h-2z\"/></svg>");
  EXPECT_EQ(pathsOf({{0, 399}}, {0, 399}, 0), bar + "<path class=m d=\"M0 0h2v14h-2z\"/></svg>");
  EXPECT_EQ(pathsOf({{0, 399}}, {0, 399}, 400), bar + "</svg>");
}

}  // namespace
