#include "check/text/source_text.h"

#include <gtest/gtest.h>

namespace {

TEST(SourceText, GivesItsLinesWithoutAByteOrderMark) {
  const SourceText source("name", "\xEF\xBB\xBFone\n\nthree");
  EXPECT_EQ(source.name(), "name");
  EXPECT_EQ(source.lineCount(), 3U);
  EXPECT_EQ(source.line(0), "");
  EXPECT_EQ(source.line(1), "one");
  EXPECT_EQ(source.line(2), "");
  EXPECT_EQ(source.line(3), "three");
  EXPECT_EQ(source.line(4), "");
  EXPECT_EQ(source.text(), "one\n\nthree");
}

TEST(SourceText, TellsPlacesAndBytes) {
  for (const char* text : {"one\n\nthree", "one\n\nthree\n", "\n", "x"}) {
    const SourceText source("name", text);
    for (size_t at = 0; at < source.text().size(); ++at) {
      const Position place = source.positionOf(at);
      EXPECT_EQ(source.offsetOf(place), at) << text;
      const bool isNewline = source.text()[at] == '\n';
      EXPECT_EQ(source.line(place.line).size() == place.column, isNewline) << text << at;
    }
    EXPECT_EQ(source.positionOf(source.text().size()).line, source.lineCount()) << text;
  }
  const SourceText source("name", "one\ntwo");
  EXPECT_EQ(source.offsetOf({1, 9}), 3U);  // beyond the line
  EXPECT_EQ(source.offsetOf({3, 0}), 7U);
  EXPECT_EQ(SourceText("name", "").positionOf(0).line, 1U);
}

}  // namespace
