#include "play/session_words.h"

#include <gtest/gtest.h>

#include <random>

namespace {

// The words of a line in brackets, quoted parts in quotes and variables with their sign; or the
// place and the sentence of what is wrong.
std::string shown(std::string_view line) {
  std::vector<SessionWord> words;
  const std::optional<WordError> error = readSessionWords(line, words);
  if (error) return std::to_string(error->at) + ": " + error->text;
  std::string text;
  for (const SessionWord& word : words) {
    text += '[';
    for (const WordPiece& piece : word.pieces) {
      const std::string sign = piece.isQuoted ? "\"" : "";
      text += sign + (piece.isVariable ? "$" : "") + piece.text + sign;
    }
    text += ']';
  }
  return text;
}

TEST(SessionWords, AreSeparatedByBlanks) {
  const struct {
    const char* line;
    const char* words;
  } cases[] = {
      {"", ""},
      {" \t ", ""},
      {"set gain 5", "[set][gain][5]"},
      {"\tset  gain\t5 ", "[set][gain][5]"},
      {"# set", ""},
      {"commit # now", "[commit]"},
      {"commit#now", "[commit#now]"},
      {"commit -> a=1 # why", "[commit][->][a=1]"},
      {"a->b", "[a->b]"},
      {"\"two words\"", "[\"two words\"]"},
      {"a=\"two words\"!", "[a=\"two words\"!]"},
      {"\"\"", "[\"\"]"},
      {"\"a # b\" # c", "[\"a # b\"]"},
      {"\"a\tb\"", "[\"a\tb\"]"},
      {R"(\"a\\\#\$\")", R"(["a\#$"])"},
      {R"("\"\n\t\r\x41\xc3\xa9")", "[\"\"\n\t\rA\xc3\xa9\"]"},
      {"$s", "[$s]"},
      {"gain[$c]x${c}y", "[gain[$c]x$cy]"},
      {"\"$s and ${s}\"", "[\"\"\"$s\"\" and \"\"$s\"]"},
      {"\xc3\xa9", "[\xc3\xa9]"},
  };
  for (const auto& c : cases) EXPECT_EQ(shown(c.line), c.words) << c.line;
}

TEST(SessionWords, HaveAPlaceForWhatIsWrong) {
  constexpr const char* ESCAPE =
      R"(after a backslash comes one of \ " # $ n t r, or x and two hexadecimal digits)";
  constexpr const char* SIGN =
      "a \"$\" begins the name of a loop variable; write \\$ for the sign itself";
  const struct {
    std::string_view line;
    std::string error;
  } cases[] = {
      {"set a \"b", "6: a quote is not closed"},
      {"\"", "0: a quote is not closed"},
      {"a \"b\"\"c", "5: a quote is not closed"},
      {"a \\b", std::string("2: ") + ESCAPE},
      {"a \\", std::string("2: ") + ESCAPE},
      {"\\x4", "0: after \\x come two hexadecimal digits"},
      {"\\xgg", "0: after \\x come two hexadecimal digits"},
      {"a \\x00", "2: no text has a NUL byte"},
      {std::string_view("a\0b", 3), "1: a control character; write \\x and two hexadecimal digits"},
      {"a\x01", "1: a control character; write \\x and two hexadecimal digits"},
      {"costs 5$", std::string("7: ") + SIGN},
      {"$ 5", std::string("0: ") + SIGN},
      {"${a", std::string("0: ") + SIGN},
      {"${}", std::string("0: ") + SIGN},
      {"a \\xff", "2: a word has bytes that are no UTF-8"},
      {"a b\xff", "2: a word has bytes that are no UTF-8"},
  };
  for (const auto& c : cases) EXPECT_EQ(shown(c.line), c.error) << c.line;
}

TEST(SessionWords, KnowWhereTheyAre) {
  std::vector<SessionWord> words;
  ASSERT_FALSE(readSessionWords(" set \"a b\"x # c", words));
  ASSERT_EQ(words.size(), 2U);
  EXPECT_EQ(words[0].begin, 1U);
  EXPECT_EQ(words[0].end, 4U);
  EXPECT_EQ(words[1].begin, 5U);
  EXPECT_EQ(words[1].end, 11U);
}

TEST(SessionWords, AreSignsOnlyWithoutQuotes) {
  const struct {
    const char* line;
    bool isArrow;
    bool endsWithColon;
  } cases[] = {
      {"->", true, false},  {"\"->\"", false, false}, {"-\\>", false, false}, {"a:", false, true},
      {"$a:", false, true}, {"\"a:\"", false, false}, {"a:b", false, false},  {":", false, true},
  };
  for (const auto& c : cases) {
    std::vector<SessionWord> words;
    if (readSessionWords(c.line, words)) continue;
    ASSERT_EQ(words.size(), 1U) << c.line;
    EXPECT_EQ(words[0].is("->"), c.isArrow) << c.line;
    EXPECT_EQ(words[0].endsWithColon(), c.endsWithColon) << c.line;
  }
}

TEST(SessionWords, AreSpelledWithQuotesWhereTheyNeedThem) {
  const struct {
    const char* text;
    const char* word;
  } cases[] = {
      {"720p/50", "720p/50"},
      {"", "\"\""},
      {"two words", "\"two words\""},
      {"#1", "\"#1\""},
      {"a#1", "a#1"},
      {"->", "\"->\""},
      {"refused:", "\"refused:\""},
      {"5$", "\"5\\$\""},
      {"a\"b\\c", "\"a\\\"b\\\\c\""},
      {"a\nb\x01", "\"a\\nb\\x01\""},
  };
  for (const auto& c : cases) EXPECT_EQ(spelledWord(c.text), c.word) << c.text;
  EXPECT_EQ(quotedWord("a"), "\"a\"");
}

TEST(SessionWords, SpellChangesByNameAndValue) {
  EXPECT_EQ(spelledChange("mode=720p/50"), "mode=720p/50");
  EXPECT_EQ(spelledChange("title="), "title=");
  EXPECT_EQ(spelledChange("title=two words"), "title=\"two words\"");
  EXPECT_EQ(spelledChange("title=a=b"), "title=a=b");
  EXPECT_EQ(spelledChange("an odd name[1]=2"), "\"an odd name[1]\"=2");
}

// Whatever a text is, its spelling is one word with that text.
TEST(SessionWords, ReadWhatTheySpell) {
  constexpr std::string_view SIGNS = "ab1 \t\n\r\"\\#$->=:[]{}x\x01\x7f";
  std::mt19937 random(1);
  for (int i = 0; i < 20000; ++i) {
    std::string text;
    for (size_t length = random() % 6; length > 0; --length) {
      text += random() % 8 == 0 ? std::string("\xc3\xa9")
                                : std::string(1, SIGNS[random() % SIGNS.size()]);
    }
    for (const std::string& spelled : {spelledWord(text), quotedWord(text), spelledChange(text)}) {
      std::vector<SessionWord> words;
      ASSERT_FALSE(readSessionWords(spelled, words)) << spelled;
      ASSERT_EQ(words.size(), 1U) << spelled;
      EXPECT_EQ(words[0].text(), text);
      EXPECT_FALSE(words[0].hasVariable()) << spelled;
      EXPECT_FALSE(words[0].is("->") || words[0].is("refused:")) << spelled;
    }
  }
}

}  // namespace
