#include "ctl/text/quoted.h"

#include <gtest/gtest.h>

namespace {

TEST(Quoted, AreTextsThatAreNotThemselves) {
  struct Case {
    std::string text;
    std::string line;
    std::string word;
  };
  const Case cases[] = {
      {"720p/50", "720p/50", "720p/50"},
      {"", "", R"("")"},  // nothing behind a sign is an empty text, nothing among words is missing
      {"frame store", "frame store", R"("frame store")"},
      {" a", R"(" a")", R"(" a")"},
      {"a ", R"("a ")", R"("a ")"},
      {R"("a")", R"("\"a\"")", R"("\"a\"")"},
      {R"(a"b\c)", R"(a"b\c)", R"("a\"b\\c")"},
      {"a,b", "a,b", R"("a,b")"},
      {"(a)", "(a)", R"x("(a)")x"},
      {"a;b", "a;b", R"("a;b")"},
      {"a\nb\tc\rd", R"("a\nb\tc\rd")", R"("a\nb\tc\rd")"},
      {"\x1b[31m", R"("\x1b[31m")", R"("\x1b[31m")"},
      {"\x7f", R"("\x7f")", R"("\x7f")"},
      {"\xc2\x85", R"("\xc2\x85")", R"("\xc2\x85")"},  // a control character
      {"a\xe2\x80\xae"
       "b",
       R"("a\xe2\x80\xaeb")", R"("a\xe2\x80\xaeb")"},  // turns the text round
      {"grün ▲", "grün ▲", R"("grün ▲")"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.line);
    EXPECT_EQ(quotedLine(c.text), c.line);
    EXPECT_EQ(quotedWord(c.text), c.word);
  }
}

TEST(Quoted, AssignmentsShowWhereTheNameEnds) {
  EXPECT_EQ(quotedAssignment("gain", "5"), "gain=5");
  EXPECT_EQ(quotedAssignment("gain", ""), "gain=");
  EXPECT_EQ(quotedAssignment("gain", "a=b"), "gain=a=b");
  EXPECT_EQ(quotedAssignment("gain[a=b]", "5"), "gain[a=b]=5");
  EXPECT_EQ(quotedAssignment("gain[a\n]", "5\n"), R"("gain[a\n]"="5\n")");
  EXPECT_EQ(quotedAssignment("a=b", "5"), R"("a=b"=5)");
}

TEST(PrintableText, KeepsItsOwnQuotes) {
  const struct {
    std::string text;
    std::string printable;
  } cases[] = {
      {"", ""},
      {R"(rangeValid { "a\b" } )", R"(rangeValid { "a\b" } )"},
      {"\"x\x1b[31mred\"", R"("x\x1b[31mred")"},
      {"a\nb\tc\rd\x7f", R"(a\nb\tc\rd\x7f)"},
      {"\xc2\x85grün", R"(\xc2\x85grün)"},
  };
  for (const auto& [text, printable] : cases) EXPECT_EQ(printableText(text), printable);
}

TEST(ShellWord, IsOneWord) {
  const struct {
    const char* text;
    const char* shown;
    const char* script;
  } cases[] = {
      {"mode=720p/50", "mode=720p/50", "mode=720p/50"},
      {"position[1]=5", "'position[1]=5'", "'position[1]=5'"},
      {"it's", R"('it'\''s')", R"('it'\''s')"},
      {"", "''", "''"},
      {"grün", "'grün'", "'grün'"},
      {"a\nb\tc\rd", R"($'a\nb\tc\rd')", "'a\nb\tc\rd'"},
      {"\x1b[31m'\\", R"($'\x1b[31m\'\\')", "'\x1b[31m'\\''\\'"},
      {"\xe2\x80\xae", R"($'\xe2\x80\xae')", "'\xe2\x80\xae'"},  // turns the rest of the line
  };
  for (const auto& [text, shown, script] : cases) {
    EXPECT_EQ(shellWord(text), shown);
    EXPECT_EQ(scriptWord(text), script);
  }
}

}  // namespace
