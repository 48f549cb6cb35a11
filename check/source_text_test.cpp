#include "check/source_text.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

std::vector<std::string> linesOf(const std::string& text) {
  const SourceText source("text", text);
  std::vector<std::string> lines;
  for (uint32_t number = 1; number <= source.lineCount(); ++number) {
    lines.emplace_back(source.line(number));
  }
  return lines;
}

TEST(SourceText, HasTheLinesWithoutTheirNewlines) {
  using Lines = std::vector<std::string>;
  EXPECT_EQ(linesOf(""), Lines());
  EXPECT_EQ(linesOf("a"), Lines({"a"}));
  EXPECT_EQ(linesOf("a\n\nb\n"), Lines({"a", "", "b"}));
  EXPECT_EQ(linesOf("a\r\nb"), Lines({"a\r", "b"}));
  // As the daemon does, at the very start only.
  EXPECT_EQ(linesOf("\xEF\xBB\xBFgain\n\xEF\xBB\xBF"), Lines({"gain", "\xEF\xBB\xBF"}));
}

TEST(SourceText, HasNoOtherLines) {
  const SourceText source("text", "a\nb\n");
  EXPECT_EQ(source.line(0), "");
  EXPECT_EQ(source.line(3), "");
  EXPECT_EQ(source.name(), "text");
}

}  // namespace
