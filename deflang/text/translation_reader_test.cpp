#include "deflang/text/translation_reader.h"

#include <gtest/gtest.h>

#include "tests/support/reader.h"

namespace {

Stop readText(TranslationReader& reader, std::string_view text) {
  return feedLines([&reader](Cursor& cursor) { return reader.read(cursor); }, linesOf(text));
}

TEST(TranslationReader, ReadsTextsAndNumbers) {
  struct Case {
    std::string_view text;
    std::string_view translation;
    std::string_view at;
  };
  const Case cases[] = {
      {"{ \"off\" -> 0 }", "'off' -> '0'", "1:2"},
      {"{1->2}", "'1' -> '2'", "1:1"},
      {"{ 0x10 -> \"-1\" }", "'16' -> '-1'", "1:2"},  // numbers are written in decimal
      {"{ \"0x10\" -> 017 }", "'0x10' -> '15'", "1:2"},
      {"{ \"\" -> \"a->}b\" }", "'' -> 'a->}b'", "1:2"},
      {"\n{\n 1\n->\n\"a\n b\"\n}\n", "'1' -> 'a b'", "3:1"},
      {"{ \"a\n b\" -> 2 }", "'a b' -> '2'", "1:2"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    TranslationReader reader;
    EXPECT_EQ(readText(reader, c.text).result, PARSE_DONE);
    const Translation translation = reader.take();
    EXPECT_EQ(textOf(translation), c.translation);
    EXPECT_EQ(textOf(translation.at), c.at);
  }
}

TEST(TranslationReader, EndsAfterItsBrace) {
  TranslationReader reader;
  EXPECT_EQ(readText(reader, "{ 1 -> 2 } }"), (Stop{PARSE_DONE, 1, 10}));
}

TEST(TranslationReader, FailsWithTheCaretAtTheFirstWrongCharacter) {
  struct Case {
    std::string_view text;
    Stop stop;
  };
  const Case cases[] = {
      {"1 -> 2", {PARSE_SYNTAX_ERROR, 1, 0}},
      {"(a) { 1 -> 2 }", {PARSE_SYNTAX_ERROR, 1, 0}},
      {"{ }", {PARSE_SYNTAX_ERROR, 1, 2}},
      {"{ -> 2 }", {PARSE_SYNTAX_ERROR, 1, 2}},
      {"{ -1 -> 2 }", {PARSE_SYNTAX_ERROR, 1, 2}},  // a negative number must be quoted
      {"{ 1 -> -2 }", {PARSE_SYNTAX_ERROR, 1, 7}},
      {"{ 1 -> }", {PARSE_SYNTAX_ERROR, 1, 7}},
      {"{ 1 = 2 }", {PARSE_SYNTAX_ERROR, 1, 4}},
      {"{ 1 - > 2 }", {PARSE_SYNTAX_ERROR, 1, 4}},
      {"{ 1>2 }", {PARSE_SYNTAX_ERROR, 1, 3}},
      {"{ off -> 2 }", {PARSE_SYNTAX_ERROR, 1, 2}},
      {"{ 12ab -> 2 }", {PARSE_SYNTAX_ERROR, 1, 4}},
      {"{ 1 -> 2x }", {PARSE_SYNTAX_ERROR, 1, 8}},
      {"{ (1) -> 2 }", {PARSE_SYNTAX_ERROR, 1, 2}},
      {"{ 1 -> 2, 3 -> 4 }", {PARSE_SYNTAX_ERROR, 1, 8}},  // one translation a statement
      {"{ \"a\" \"b\" }", {PARSE_SYNTAX_ERROR, 1, 6}},
      {"{ 1 -> \"b\" 3 }", {PARSE_SYNTAX_ERROR, 1, 11}},
      {"{ 1\n -> 2\n  3 }", {PARSE_SYNTAX_ERROR, 3, 2}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    TranslationReader reader;
    EXPECT_EQ(readText(reader, c.text), c.stop);
  }
}

TEST(TranslationReader, GoesOnWithTheNextLineAtEveryStage) {
  struct Case {
    std::string_view text;
    std::string_view translation;
  };
  const Case cases[] = {
      {" { \"a b\" -> 2 } ", "'a b' -> '2'"},
      {" { 1 -> \"c d\" } ", "'1' -> 'c d'"},
  };
  for (const Case& c : cases) {
    for (size_t length = 0; length + 1 < c.text.size(); ++length) {
      if (c.text[length] != ' ') continue;
      SCOPED_TRACE(c.text.substr(0, length));
      TranslationReader reader;
      EXPECT_EQ(readText(reader, c.text.substr(0, length)).result, PARSE_CONTINUES);
      EXPECT_EQ(readText(reader, c.text.substr(length)).result, PARSE_DONE);
      EXPECT_EQ(textOf(reader.take()), c.translation);
    }
  }
}

TEST(TranslationReader, StartsAnewAfterReset) {
  for (const std::string_view before : {"{ \"a", "{ 1 -> \"b", "{ 1 -> 2 }"}) {
    SCOPED_TRACE(before);
    TranslationReader reader;
    readText(reader, before);
    reader.reset();
    EXPECT_EQ(readText(reader, "{ \"c\" -> \"d\" }").result, PARSE_DONE);
    EXPECT_EQ(textOf(reader.take()), "'c' -> 'd'");
  }
}

TEST(TranslationReader, ForgetsATranslationThatNobodyTookOnReset) {
  TranslationReader reader;
  readText(reader, "{ 1 -> 2 }");
  reader.reset();
  EXPECT_EQ(textOf(reader.take()), textOf(TranslationReader().take()));
}

}  // namespace
