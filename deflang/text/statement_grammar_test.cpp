#include "deflang/text/statement_grammar.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/reader.h"

namespace {

// A line may end at each blank of `text`.
template <typename T>
void expectGoesOn(bool (*readStatement)(TextCursor&, T&), std::string_view text,
                  std::string_view statement) {
  for (size_t at = 0; at < text.size(); ++at) {
    if (text[at] != ' ') continue;
    SCOPED_TRACE(text.substr(0, at));
    T read;
    EXPECT_EQ(readText(readStatement, text.substr(0, at), read).result, TEXT_ENDS);
    EXPECT_EQ(readText(readStatement, {text.substr(0, at), text.substr(at)}, read).result,
              PARSE_DONE);
    EXPECT_EQ(textOf(read), statement);
  }
}

// A number in braces, as a default has it.
Stop readNumber(std::string_view word, DefaultStatement& read) {
  const std::string text = "{" + std::string(word);
  return readText(readDefault, text, read);
}

TEST(BareNumber, IsTheWholeWord) {
  struct Case {
    std::string_view word;
    std::string_view number;
  };
  const Case cases[] = {
      {"0}", "0"},
      {"255}", "255"},
      {"-12\n}", "-12"},
      {"+12 }", "12"},
      {"0x1F}", "31"},
      {"017}", "15"},
      {"2147483647}", "2147483647"},
      {"-2147483648}", "-2147483648"},
      {"2147483648}", "-2147483648"},  // the low 32 bits of a long
      {"4294967301}", "5"},
      {"99999999999999999999}", "-1"},  // those of the greatest long
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.word);
    DefaultStatement read;
    EXPECT_EQ(readNumber(c.word, read).result, PARSE_DONE);
    EXPECT_EQ(textOf(read.value), c.number);
  }
}

TEST(BareNumber, FailsAtTheFirstCharacterOfNoNumber) {
  struct Case {
    std::string_view word;
    size_t column;
  };
  const Case cases[] = {
      {"}", 0},                  // a missing number
      {"x12", 0},                // from the start
      {"12ab}", 2}, {"0x}", 1},  // "0" is a number, "x" without digits adds nothing
      {"0xfg", 3},  {"089", 1},  // octal
      {"1.5", 1},   {"-", 0},   {"--5", 0}, {"5\"", 1}, {"\xb2", 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.word);
    DefaultStatement read;
    EXPECT_EQ(readNumber(c.word, read), (Stop{PARSE_SYNTAX_ERROR, 1, c.column + 1}));
  }
}

TEST(ReadIndexList, ReadsNamesWithTheirPlaces) {
  struct Case {
    std::string_view text;
    std::string_view names;
    std::vector<std::string_view> places;
  };
  const Case cases[] = {
      {"{ chan }", "{ chan }", {"1:2"}},
      {"{chan,out}", "{ chan out }", {"1:1", "1:6"}},
      {"{ chan , out,chan}", "{ chan out chan }", {"1:2", "1:9", "1:13"}},
      {"{ a[1]{(\"#. }", "{ a[1]{(\"#. }", {"1:2"}},  // only "," and "}" end a name
      {"\n{\n chan\n,\nout\n}\n", "{ chan out }", {"3:1", "5:0"}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    IndexStatement read;
    EXPECT_EQ(readText(readIndexList, c.text, read).result, PARSE_DONE);
    EXPECT_EQ(textOf(read), c.names);
    ASSERT_EQ(read.size(), c.places.size());
    for (size_t i = 0; i < c.places.size(); ++i) EXPECT_EQ(textOf(read[i].at), c.places[i]);
  }
}

TEST(ReadIndexList, EndsAfterItsBrace) {
  IndexStatement read;
  EXPECT_EQ(readText(readIndexList, "{ a } }", read), (Stop{PARSE_DONE, 1, 5}));
}

TEST(ReadIndexList, FailsWithTheCaretAtTheFirstWrongCharacter) {
  struct Case {
    std::string_view text;
    Stop stop;
  };
  const Case cases[] = {
      {"chan", {PARSE_SYNTAX_ERROR, 1, 0}},    {"(a) { chan }", {PARSE_SYNTAX_ERROR, 1, 0}},
      {"{ }", {PARSE_SYNTAX_ERROR, 1, 2}},     {"{ , }", {PARSE_SYNTAX_ERROR, 1, 2}},
      {"{ a, }", {PARSE_SYNTAX_ERROR, 1, 5}},  {"{ a b }", {PARSE_SYNTAX_ERROR, 1, 4}},
      {"{ a\n {", {PARSE_SYNTAX_ERROR, 2, 1}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    IndexStatement read;
    EXPECT_EQ(readText(readIndexList, c.text, read), c.stop);
  }
}

TEST(ReadIndexList, GoesOnWithTheNextLineAtEveryStep) {
  expectGoesOn<IndexStatement>(readIndexList, " { a , b }", "{ a b }");
}

TEST(ReadRange, ReadsEveryFormOfItem) {
  struct Case {
    std::string_view text;
    std::string_view statement;
  };
  const Case cases[] = {
      {"{ 0..255 }", "() { [0]..[255] }"},
      {"{0..255}", "() { [0]..[255] }"},
      {"{ 7 }", "() { [7] }"},
      {"{ -5 .. -1 }", "() { [-5]..[-1] }"},
      {"{ 0 .. 0x10, 32, 64..127 }", "() { [0]..[16] [32] [64]..[127] }"},
      {"{ \"auto\", \"on\" , 1 }", "() { 'auto' 'on' [1] }"},
      {"{ \"\" }", "() { '' }"},
      {"{}", "() { }"},
      {"{ }", "() { }"},
      {"{ (a)..(b + 1) }", "() { [a]..[b + 1] }"},
      {"{ (-1)..5, 0..(a), (c) }", "() { [-1]..[5] [0]..[a] [c] }"},
      {"{ () }", "() { [] }"},
      {"{ ()..() }", "() { []..[] }"},
      {"{ (\"a\") }", "() { ['a'] }"},
      {"(mode == 1) { 0..9 }", "(mode == 1) { [0]..[9] }"},
      {"(mode == 1) { }", "(mode == 1) { }"},
      {"() { 1 }", "() { [1] }"},
      {"\n(\nm\n)\n{\n0\n..\n9\n,\n\"a\n b\"\n,\n(\nx\n)\n}\n", "(m) { [0]..[9] 'a b' [x] }"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    RangeStatement read;
    EXPECT_EQ(readText(readRange, c.text, read).result, PARSE_DONE);
    EXPECT_EQ(textOf(read), c.statement);
  }
}

TEST(ReadRange, KeepsThePlaceOfEachItem) {
  RangeStatement read;
  EXPECT_EQ(readText(readRange, "{ 0..9, \"a\n\", \n (x)..5 }", read), (Stop{PARSE_DONE, 3, 9}));
  ASSERT_EQ(read.items.size(), 3U);
  EXPECT_EQ(textOf(read.items[0].at), "1:2");
  EXPECT_EQ(placesOf(*read.items[0].upper), "1:5");
  EXPECT_EQ(textOf(read.items[1].at), "1:8");
  EXPECT_EQ(textOf(read.items[2].at), "3:1");
  EXPECT_EQ(placesOf(read.items[2].lower), "3:2");
}

TEST(ReadRange, EndsAfterItsBrace) {
  RangeStatement read;
  EXPECT_EQ(readText(readRange, "{ 1 } ctrlRO", read), (Stop{PARSE_DONE, 1, 5}));
}

TEST(ReadRange, FailsWithTheCaretAtTheFirstWrongCharacter) {
  struct Case {
    std::string_view text;
    Stop stop;
  };
  const Case cases[] = {
      {"0..5", {PARSE_SYNTAX_ERROR, 1, 0}},
      {"(a) (b) { 1 }", {PARSE_SYNTAX_ERROR, 1, 4}},
      {"{ , }", {PARSE_SYNTAX_ERROR, 1, 2}},
      {"{ 1, }", {PARSE_SYNTAX_ERROR, 1, 5}},
      {"{ 1,,2 }", {PARSE_SYNTAX_ERROR, 1, 4}},
      {"{ 0.. }", {PARSE_SYNTAX_ERROR, 1, 6}},
      {"{ ..5 }", {PARSE_SYNTAX_ERROR, 1, 2}},
      {"{ 0...5 }", {PARSE_SYNTAX_ERROR, 1, 5}},
      {"{ 0.5 }", {PARSE_SYNTAX_ERROR, 1, 3}},
      {"{ 0. .5 }", {PARSE_SYNTAX_ERROR, 1, 3}},
      {"{ 0..5..9 }", {PARSE_SYNTAX_ERROR, 1, 6}},  // the upper number does not stop at "."
      {"{ 0..(5)..9 }", {PARSE_SYNTAX_ERROR, 1, 8}},
      {"{ 12ab }", {PARSE_SYNTAX_ERROR, 1, 4}},
      {"{ 1..2x }", {PARSE_SYNTAX_ERROR, 1, 6}},
      {"{ a..b }", {PARSE_SYNTAX_ERROR, 1, 2}},
      {"{ 1 2 }", {PARSE_SYNTAX_ERROR, 1, 4}},
      {"{ \"a\"..\"b\" }", {PARSE_SYNTAX_ERROR, 1, 5}},
      {"{ \"a\" \"b\" }", {PARSE_SYNTAX_ERROR, 1, 6}},
      {"{ 0..\"b\" }", {PARSE_SYNTAX_ERROR, 1, 5}},
      {"{ (a) (b) }", {PARSE_SYNTAX_ERROR, 1, 6}},
      {"{ (a = 1) }", {PARSE_SYNTAX_ERROR, 1, 5}},
      {"{ 1 {", {PARSE_SYNTAX_ERROR, 1, 4}},
      {"{ 1\n ) }", {PARSE_SYNTAX_ERROR, 2, 1}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    RangeStatement read;
    EXPECT_EQ(readText(readRange, c.text, read), c.stop);
  }
}

TEST(ReadRange, GoesOnWithTheNextLineAtEveryStep) {
  expectGoesOn<RangeStatement>(readRange, "(m) { 0 .. (x) , \"a\" , 7 }",
                               "(m) { [0]..[x] 'a' [7] }");
}

TEST(ReadDefault, ReadsEveryFormOfValue) {
  struct Case {
    std::string_view text;
    std::string_view statement;
    std::string_view at;
  };
  const Case cases[] = {
      {"{ 128 }", "() { [128] }", "1:2"},
      {"{128}", "() { [128] }", "1:1"},
      {"{ -0x10 }", "() { [-16] }", "1:2"},
      {"{ \"auto\" }", "() { 'auto' }", "1:2"},
      {"{ \"\" }", "() { '' }", "1:2"},
      {"{ \" a } b \" }", "() { ' a } b ' }", "1:2"},
      {"{ \"one\n two\" }", "() { 'one two' }", "1:2"},
      {"{ (a + 1) }", "() { [a + 1] }", "1:2"},
      {"{ () }", "() { [] }", "1:2"},
      {"(mode == 1) { 5 }", "(mode == 1) { [5] }", "1:14"},
      {"() { 5 }", "() { [5] }", "1:5"},
      {"\n(\nm\n)\n{\n (\nx\n)\n}\n", "(m) { [x] }", "6:1"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    DefaultStatement read;
    EXPECT_EQ(readText(readDefault, c.text, read).result, PARSE_DONE);
    EXPECT_EQ(textOf(read), c.statement);
    EXPECT_EQ(textOf(read.at), c.at);
  }
}

TEST(ReadDefault, EndsAfterItsBrace) {
  DefaultStatement read;
  EXPECT_EQ(readText(readDefault, "{ 1 } }", read), (Stop{PARSE_DONE, 1, 5}));
}

TEST(ReadDefault, FailsWithTheCaretAtTheFirstWrongCharacter) {
  struct Case {
    std::string_view text;
    Stop stop;
  };
  const Case cases[] = {
      {"128", {PARSE_SYNTAX_ERROR, 1, 0}},         {"(a) (b) { 1 }", {PARSE_SYNTAX_ERROR, 1, 4}},
      {"(a) 1", {PARSE_SYNTAX_ERROR, 1, 4}},       {"{ }", {PARSE_SYNTAX_ERROR, 1, 2}},
      {"{ 12ab }", {PARSE_SYNTAX_ERROR, 1, 4}},    {"{ 1,2 }", {PARSE_SYNTAX_ERROR, 1, 3}},
      {"{ 1..2 }", {PARSE_SYNTAX_ERROR, 1, 3}},    {"{ auto }", {PARSE_SYNTAX_ERROR, 1, 2}},
      {"{ 1 2 }", {PARSE_SYNTAX_ERROR, 1, 4}},     {"{ \"a\" 2 }", {PARSE_SYNTAX_ERROR, 1, 6}},
      {"{ (a) (b) }", {PARSE_SYNTAX_ERROR, 1, 6}}, {"{ (a = 1) }", {PARSE_SYNTAX_ERROR, 1, 5}},
      {"{ 1\n x", {PARSE_SYNTAX_ERROR, 2, 1}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    DefaultStatement read;
    EXPECT_EQ(readText(readDefault, c.text, read), c.stop);
  }
}

TEST(ReadDefault, GoesOnWithTheNextLineAtEveryStep) {
  expectGoesOn<DefaultStatement>(readDefault, " ( m ) { \"a b\" }", "(m) { 'a b' }");
  expectGoesOn<DefaultStatement>(readDefault, " { ( x + 1 ) }", "() { [x + 1] }");
  expectGoesOn<DefaultStatement>(readDefault, " { 5 }", "() { [5] }");
}

TEST(ReadTranslation, ReadsTextsAndNumbers) {
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
    Translation read;
    EXPECT_EQ(readText(readTranslation, c.text, read).result, PARSE_DONE);
    EXPECT_EQ(textOf(read), c.translation);
    EXPECT_EQ(textOf(read.at), c.at);
  }
}

TEST(ReadTranslation, EndsAfterItsBrace) {
  Translation read;
  EXPECT_EQ(readText(readTranslation, "{ 1 -> 2 } }", read), (Stop{PARSE_DONE, 1, 10}));
}

TEST(ReadTranslation, FailsWithTheCaretAtTheFirstWrongCharacter) {
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
    Translation read;
    EXPECT_EQ(readText(readTranslation, c.text, read), c.stop);
  }
}

TEST(ReadTranslation, GoesOnWithTheNextLineAtEveryStep) {
  expectGoesOn<Translation>(readTranslation, " { \"a b\" -> 2 }", "'a b' -> '2'");
  expectGoesOn<Translation>(readTranslation, " { 1 -> \"c d\" }", "'1' -> 'c d'");
}

}  // namespace
