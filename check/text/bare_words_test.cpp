// What is said about words without quotes or parentheses: one row for each statement of "a".
#include "check/text/bare_words.h"

#include <gtest/gtest.h>

#include "check/text/foreign_quotes.h"
#include "tests/support/findings.h"

namespace {

using Texts = std::vector<std::string>;

struct Row {
  std::string statement;
  Texts findings;
};

Texts findingsIn(const std::string& statement) {
  const SourceText source(
      "text", "mode rw { }\nuser-lock rw { }\nfan_limit rw { }\na rw {\n" + statement + "\n}\n");
  ReadText read;
  Findings findings;
  readText(source, read, findings);
  return detailedTexts(findings);
}

TEST(BareWords, OfOneStatementAreToldTogether) {
  const Row rows[] = {
      {"rangeValid { x, y, z }",
       {"5:14 error: texts have to be in quotes: \"x\", \"y\", \"z\" [unquoted-text]",
        "5:14 meant: \"x\", \"y\", \"z\""}},
      {"rangeValid { x, \"y\", 3..4, 1080i/50, full screen }",
       {"5:14 error: texts have to be in quotes: \"x\", \"1080i/50\", \"full screen\" "
        "[unquoted-text]",
        "5:14 meant: \"x\", \"y\", 3..4, \"1080i/50\", \"full screen\""}},
      {"rangeValid {\n  x,\n  y\n}",
       {"6:3 error: texts have to be in quotes: \"x\", \"y\" [unquoted-text]", "7:3 note: and here",
        "6:3 meant: \"x\""}},
      {"rangeValid { mode, fan-limit }",
       {"5:14 error: expressions have to be in parentheses: (mode), (fan_limit) [syntax]",
        "5:14 meant: (mode), (fan_limit)"}},
      {"rangeValid { off, mode }",
       {"5:14 error: texts have to be in quotes, and names in parentheses: \"off\", (mode) "
        "[unquoted-text]",
        "5:14 meant: \"off\", (mode)"}},
      // Constants of the command line, perhaps.
      {"rangeValid { ON, OFF }",
       {"5:14 error: texts have to be in quotes, and names in parentheses: \"ON\", \"OFF\" "
        "[unquoted-text]"}},
      {"rangeValid { x y z }",
       {"5:14 error: texts have to be in quotes, with a \",\" between two: \"x\", \"y\", \"z\" "
        "[unquoted-text]"}},
      {"rangeValid { a1, a2, a3, a4, a5, a6, a7 }",
       {"5:14 error: texts have to be in quotes: \"a1\", \"a2\", \"a3\", \"a4\", \"a5\", \"a6\", "
        "... [unquoted-text]",
        "5:14 meant: \"a1\", \"a2\", \"a3\", \"a4\", \"a5\", \"a6\", \"a7\""}},
      {"rangeValid { \"x\", y\" }",
       {"5:19 error: a text has to be in double quotes: \"y\" [unquoted-text]",
        "5:19 meant: \"y\""}},
      {"rangeValid { 16:9, 4:3 }",
       {"5:14 error: texts have to be in quotes: \"16:9\", \"4:3\" [unquoted-text]",
        "5:14 meant: \"16:9\", \"4:3\""}},
      {"valueChange { off->mode }",
       {"5:15 error: texts have to be in quotes: \"off\", \"mode\" [unquoted-text]",
        "5:15 meant: \"off\"->\"mode\""}},
      {"default { user-lock }",
       {"5:11 error: no expression can name \"user-lock\", as it takes the \"-\" for an operator: "
        "give the parameter a name without it [syntax]"}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.statement);
    EXPECT_EQ(findingsIn(row.statement), row.findings);
  }
}

TEST(BareWords, AreNoOtherFaults) {
  const Row rows[] = {
      {"rangeValid { x, 1.5 }",
       {"5:14 error: a text has to be in quotes: \"x\" [unquoted-text]", "5:14 meant: \"x\""}},
      {"rangeValid { x, mode * 2 }",
       {"5:14 error: a text has to be in quotes: \"x\" [unquoted-text]", "5:14 meant: \"x\""}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.statement);
    EXPECT_EQ(findingsIn(row.statement), row.findings);
  }
}

TEST(ForeignQuotes, AreToldWithTheirText) {
  const Row rows[] = {
      {"rangeValid { 'two words', \u201Cb\u201D }",
       {"5:14 error: texts have to be in quotes: \"two words\", \"b\" [unquoted-text]",
        "5:14 meant: \"two words\", \"b\""}},
      {"default { \u201Ea\u201C }",
       {"5:11 error: a text has to be in double quotes: \"a\" [unquoted-text]",
        "5:11 meant: \"a\""}},
      {"default { \u00ABa }",
       {"5:11 error: a text has to be in double quotes: \"a\" [unquoted-text]"}},
      {"valueChange { \u2018on\u2019 -> 1 }",
       {"5:15 error: a text has to be in double quotes: \"on\" [unquoted-text]",
        "5:15 meant: \"on\""}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.statement);
    EXPECT_EQ(findingsIn(row.statement), row.findings);
  }
}

TEST(ForeignQuotes, GoUpToTheirPartner) {
  struct Case {
    std::string_view line;
    std::string_view whole;
    std::string_view inner;
    bool isClosed;
  };
  const Case cases[] = {
      {"'a b', 'c'", "'a b'", "a b", true},
      {"`a`", "`a`", "a", true},
      {"\u201Ca, b\u201D }", "\u201Ca, b\u201D", "a, b", true},
      {"'a, \"b'\"", "'a", "a", false},
      {"'", "'", "", false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.line);
    const std::optional<ForeignQuotation> quotation = foreignQuotation(c.line);
    ASSERT_TRUE(quotation);
    EXPECT_EQ(quotation->whole, c.whole);
    EXPECT_EQ(quotation->inner, c.inner);
    EXPECT_EQ(quotation->isClosed, c.isClosed);
  }
  EXPECT_FALSE(foreignQuotation("a'b'"));
  EXPECT_FALSE(foreignQuotation("\"a\""));
  EXPECT_FALSE(foreignQuotation(""));
}

}  // namespace
