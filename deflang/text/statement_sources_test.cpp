#include "deflang/text/statement_sources.h"

#include <gtest/gtest.h>

#include "deflang/text/definition_grammar.h"

namespace {

// Each statement of a definition with its line.
std::string shown(const std::vector<SourceStatement>& statements) {
  std::string text;
  for (const auto& [line, statement] : statements) {
    text += std::to_string(line) + " " + statement + "\n";
  }
  return text;
}

// The statements of `name` in `text`.
std::string statementsIn(std::string_view text, std::string_view name = "p") {
  DefinitionText read;
  EXPECT_EQ(readDefinitionText(piecesIn(text), read), PARSE_DONE);
  const ParameterRecord* const record = read.records.find(name);
  return record == nullptr ? "none" : shown(read.records.sources()->statementsOf(record->source));
}

TEST(StatementSources, AreWhatTheAuthorWrote) {
  const struct {
    std::string_view text;
    std::string_view statements;
  } cases[] = {
      {"p rw { }", ""},
      {"p rw { ctrlValid (BOARDS == 99) rangeValid { 9, 1..3, \"b\", \"a\" } }",
       "1 ctrlValid (BOARDS == 99)\n1 rangeValid { 9, 1..3, \"b\", \"a\" }\n"},
      // Every kind of statement, in all its forms.
      {"p rw { index { i, j } rangeValid (a) { 0x10 } rangeDoc { } rangeDoc (b) { 1 }\n"
       "default (c) { 2 } default { (d) } valueChange { \"x\" -> \"y\" } ctrlRO (e) }",
       "1 index { i, j }\n1 rangeValid (a) { 0x10 }\n1 rangeDoc { }\n1 rangeDoc (b) { 1 }\n"
       "2 default (c) { 2 }\n2 default { (d) }\n2 valueChange { \"x\" -> \"y\" }\n2 ctrlRO (e)\n"},
      // Without blanks, and with more.
      {"p rw{rangeValid{1..2}default{1}ctrlRO(a==1)}",
       "1 rangeValid{1..2}\n1 default{1}\n1 ctrlRO(a==1)\n"},
      {"p rw { ctrlRO  (  a\t==\r\n1  )rangeValid  {  } }",
       "1 ctrlRO ( a == 1 )\n2 rangeValid { }\n"},
      // Over several lines, with comments between them.
      {"p rw {\n  # a\n  rangeValid (a &&\n  # b\n\n    b)\n  {\n    1,\n    2\n  }\n  default\n  "
       "{ 1 }\n}",
       "3 rangeValid (a && b) { 1, 2 }\n11 default { 1 }\n"},
      // In quotes and brackets all is as it is, but for line ends and the lines of comments.
      {"p rw { rangeValid { \"a  b\t{ # \", \"c\n# no\n  d\" } default (g[ 1  2 ]) { 1 } }",
       "1 rangeValid { \"a  b\t{ # \", \"c  d\" }\n3 default (g[ 1  2 ]) { 1 }\n"},
      {"p rw { ctrlRO (g[\"]  ==  \"]\") }", "1 ctrlRO (g[\"] == \"]\")\n"},
      {"p rw { default { \"h\xf6he\x01\" } }", "1 default { \"h\xf6he\x01\" }\n"},
      // A name that comes again.
      {"p rw { default { 1 } }\nq rw { default { 2 } }\np ro { ctrlRO (q) }\np rw { }\n"
       "q rw { } p rw { rangeValid { 3 } }",
       "1 default { 1 }\n3 ctrlRO (q)\n5 rangeValid { 3 }\n"},
      // What the text leaves unfinished is none.
      {"p rw { default { 1 } ctrlRO (x", "1 default { 1 }\n"},
  };
  for (const auto& [text, statements] : cases) EXPECT_EQ(statementsIn(text), statements) << text;
}

// A line of more than 1024 bytes is read in pieces, and nothing is added where one ends.
TEST(StatementSources, AreWholeInLongLines) {
  const std::string statement = R"(ctrlRO (a == "b  c" || g[1] < 22))";
  size_t read = 0;
  for (size_t length = 940; length < 1010; ++length) {
    const std::string before = "p rw { default { \"" + std::string(length, 'x') + "\" } ";
    DefinitionText text;
    // Where the end of a piece cuts a sign in two, the text is refused.
    const std::string line = before + statement + " }";
    if (readDefinitionText(piecesIn(line), text, nullptr) != PARSE_DONE) continue;
    ++read;
    const auto all = text.records.sources()->statementsOf(text.records.find("p")->source);
    ASSERT_EQ(all.size(), 2U) << length;
    EXPECT_EQ(all[1].text, statement) << length;
  }
  EXPECT_GT(read, 50U);
}

// More than a block holds, with a statement that is longer than one.
TEST(StatementSources, GoOnInFurtherBlocks) {
  StatementSources sources;
  const std::string filling(100'000, 'x');
  std::vector<uint32_t> definitions;
  std::vector<std::vector<uint32_t>> numbers;
  for (uint32_t i = 0; i < 30; ++i) {
    definitions.push_back(sources.beginDefinition(10 * i + 1));
    std::vector<uint32_t>& own = numbers.emplace_back();
    for (uint32_t k = 0; k < 3; ++k) {
      own.push_back(sources.nextNumber());
      const size_t copies = i == 7 && k == 1 ? 30 : 1;
      std::string text = std::to_string(k);
      for (size_t copy = 0; copy < copies; ++copy) text += filling;
      sources.add(k, text);
    }
  }
  for (uint32_t i = 0; i < 30; ++i) {
    EXPECT_EQ(sources.lineOf(definitions[i]), 10 * i + 1);
    const std::vector<SourceStatement> all = sources.statementsOf(definitions[i]);
    ASSERT_EQ(all.size(), 3U) << i;
    for (uint32_t k = 0; k < 3; ++k) {
      EXPECT_EQ(all[k].line, 10 * i + 1 + k);
      EXPECT_EQ(all[k].text[0], static_cast<char>('0' + k));
      EXPECT_EQ(all[k].text.size(), (i == 7 && k == 1 ? 30 : 1) * filling.size() + 1);
      EXPECT_EQ(sources.statement(definitions[i], numbers[i][k]), all[k]);
    }
  }
}

}  // namespace
