#include "deflang/text/definition_parser.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/reader.h"

namespace {

std::string textOf(const ParameterRecord& record) {
  std::string text = std::string(record.name) + " " + std::to_string(record.access) + " {\n";
  for (const auto& statement : record.indices) text += "index " + textOf(statement) + "\n";
  for (const auto& statement : record.rangeValid) text += "rangeValid " + textOf(statement) + "\n";
  for (const auto& statement : record.rangeDoc) text += "rangeDoc " + textOf(statement) + "\n";
  for (const auto& condition : record.ctrlRO) text += "ctrlRO (" + textOf(condition) + ")\n";
  for (const auto& condition : record.ctrlValid) text += "ctrlValid (" + textOf(condition) + ")\n";
  for (const auto& statement : record.defaults) text += "default " + textOf(statement) + "\n";
  for (const auto& statement : record.valueChange) {
    text += "valueChange " + textOf(statement) + "\n";
  }
  return text + "}\n";
}

std::string textOf(const ParameterRecords& records) {
  std::string text;
  for (const ParameterRecord* record : records.inNameOrder()) text += textOf(*record);
  return text;
}

// A text as it reaches the parser, up to the first error.
struct Parsed {
  DefinitionParser parser;
  ParameterRecords records;
  Stop stop = {PARSE_DONE, 0, 0};

  void parse(const std::vector<std::string_view>& lines) {
    for (const std::string_view line : lines) {
      stop.result = parser.parseLine(records, line, ++stop.line, stop.column);
      if (stop.result != PARSE_DONE) return;
    }
  }
};

std::string recordsOf(std::string_view text) {
  Parsed parsed;
  parsed.parse(linesOf(text));
  EXPECT_EQ(parsed.stop.result, PARSE_DONE) << parsed.stop;
  return textOf(parsed.records);
}

Stop failureOf(std::string_view text) {
  Parsed parsed;
  parsed.parse(linesOf(text));
  return parsed.stop;
}

TEST(DefinitionParser, ReadsADefinitionSpreadOverLines) {
  Parsed parsed;
  parsed.parse(
      linesOf("# picture controls\n"
              "gain rw {\n"
              "index { chan }\n"
              "rangeValid { 0..255 }\n"
              "ctrlRO ( mode == 2 )\n"
              "default { 128 }\n"
              "}\n"));
  EXPECT_EQ(parsed.stop.result, PARSE_DONE);
  EXPECT_EQ(textOf(parsed.records),
            "gain 4 {\n"
            "index { chan }\n"
            "rangeValid () { [0]..[255] }\n"
            "ctrlRO (mode == 2)\n"
            "default () { [128] }\n"
            "}\n");
  const ParameterRecord* const gain = parsed.records.find("gain");
  ASSERT_NE(gain, nullptr);
  EXPECT_EQ(gain->line, 2U);
  EXPECT_EQ(textOf(gain->indices.front()[0].at), "3:8");
  EXPECT_EQ(textOf(gain->rangeValid.front().items[0].at), "4:13");
  EXPECT_EQ(placesOf(gain->ctrlRO.front()), "5:9 5:14 5:17");
  EXPECT_EQ(textOf(gain->defaults.front().at), "6:10");
}

TEST(DefinitionParser, KeepsEveryStatementInItsOrder) {
  EXPECT_EQ(
      recordsOf("a rw {\n"
                "  valueChange { 1 -> 2 } ctrlValid(x) rangeDoc { 1 } index{i,j} default{1}\n"
                "  rangeValid(m){2} rangeValid{\"t\"} rangeDoc(m){3..4} ctrlRO(y) index { k }\n"
                "  default(m){\"d\"} valueChange{\"3\"->4} ctrlValid (z) ctrlRO ()\n"
                "}"),
      "a 4 {\n"
      "index { i j }\n"
      "index { k }\n"
      "rangeValid (m) { [2] }\n"
      "rangeValid () { 't' }\n"
      "rangeDoc () { [1] }\n"
      "rangeDoc (m) { [3]..[4] }\n"
      "ctrlRO (y)\n"
      "ctrlRO ()\n"
      "ctrlValid (x)\n"
      "ctrlValid (z)\n"
      "default () { [1] }\n"
      "default (m) { 'd' }\n"
      "valueChange '1' -> '2'\n"
      "valueChange '3' -> '4'\n"
      "}\n");
}

TEST(DefinitionParser, KnowsEveryAccessWord) {
  EXPECT_EQ(recordsOf("e rw{}d wo {} c rostrict {} b ro { } a index {}"),
            "a 0 {\n}\nb 1 {\n}\nc 2 {\n}\nd 3 {\n}\ne 4 {\n}\n");
}

TEST(DefinitionParser, TakesNearlyAnyWordAsAName) {
  EXPECT_EQ(recordsOf("a{b rw {}\n(c) rw {}\nd\xf6#\" rw {} } rw {} index index {}"),
            "(c) 4 {\n}\na{b 4 {\n}\nd\xf6#\" 4 {\n}\nindex 0 {\n}\n} 4 {\n}\n");
}

TEST(DefinitionParser, AcceptsLinesThatSayNothing) {
  struct Case {
    std::string_view text;
    std::string_view records;
  };
  const Case cases[] = {
      {"", ""},
      {"\n", ""},
      {" \t\v\f\r\n", ""},
      {"#\n", ""},
      {"  # gain rw {\n", ""},
      {"\n\n a\n\n rw\n # { x\n\n {\n\n # }\n\n }\n\n", "a 4 {\n}\n"},
      {"a rw { default\n# 1\n{\n# 2\n5\n# 3\n} }", "a 4 {\ndefault () { [5] }\n}\n"},
      {"a\r\nrw\r\n{\r\n}\r\n", "a 4 {\n}\n"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_EQ(recordsOf(c.text), c.records);
  }
}

TEST(DefinitionParser, DropsACommentInsideAnOpenTextOrSuffixWhole) {
  EXPECT_EQ(recordsOf("a rw { default { \"one\n"
                      "  # not \" this\n"
                      " two # but this\" } }"),
            "a 4 {\ndefault () { 'one two # but this' }\n}\n");
  EXPECT_EQ(recordsOf("a rw { ctrlRO ( b[\n# ] )\n1] ) }"), "a 4 {\nctrlRO (b[1])\n}\n");
}

TEST(DefinitionParser, HasNoOtherUseForTheCommentSign) {
  EXPECT_EQ(recordsOf("a#b rw { } # rw { }"), "# 4 {\n}\na#b 4 {\n}\n");
  EXPECT_EQ(failureOf("a rw { # no comment\n"), (Stop{PARSE_SYNTAX_ERROR, 1, 7}));
}

TEST(DefinitionParser, JoinsAQuotedTextOverLines) {
  EXPECT_EQ(recordsOf("a rw { default { \"first \n"
                      "\n"
                      "  second\" } }"),
            "a 4 {\ndefault () { 'first   second' }\n}\n");
}

TEST(DefinitionParser, MergesDefinitionsOfOneName) {
  Parsed parsed;
  parsed.parse(
      linesOf("\na rw { default { 1 } ctrlRO (x) }\n"
              "b wo { }\n"
              "a ro { default { 2 } ctrlRO (y) }\n"));
  EXPECT_EQ(parsed.stop.result, PARSE_DONE);
  EXPECT_EQ(textOf(parsed.records),
            "a 1 {\nctrlRO (x)\nctrlRO (y)\ndefault () { [1] }\ndefault () { [2] }\n}\nb 3 {\n}\n");
  EXPECT_EQ(parsed.records.find("a")->line, 2U);
}

TEST(DefinitionParser, KeepsWhatAnUnfinishedTextSaidSoFar) {
  EXPECT_EQ(recordsOf("a rw { default { 1 }\n ctrlRO ( x"), "a 4 {\ndefault () { [1] }\n}\n");
  EXPECT_EQ(recordsOf("a"), "a -1 {\n}\n");
}

TEST(DefinitionParser, FailsWithTheCaretAtTheFailingStep) {
  struct Case {
    std::string_view text;
    Stop stop;
  };
  const Case cases[] = {
      {"gain[2] rw {", {PARSE_INVALID_ACCESS, 1, 4}},
      {"gain] rw {", {PARSE_INVALID_ACCESS, 1, 4}},
      {" [2] rw {", {PARSE_INVALID_ACCESS, 1, 1}},
      {"gain {", {PARSE_INVALID_ACCESS, 1, 5}},
      {"gain rx {", {PARSE_INVALID_ACCESS, 1, 5}},
      {"gain RW {", {PARSE_INVALID_ACCESS, 1, 5}},
      {"gain r {", {PARSE_INVALID_ACCESS, 1, 5}},
      {"gain rwx {", {PARSE_INVALID_ACCESS, 1, 5}},
      {"gain\n\n  rangeValid {", {PARSE_INVALID_ACCESS, 3, 2}},
      {"gain rw}", {PARSE_INVALID_ACCESS, 1, 5}},
      {"gain rw }", {PARSE_SYNTAX_ERROR, 1, 8}},
      {"gain rw\n x {", {PARSE_SYNTAX_ERROR, 2, 1}},
      {"gain rw { range { 1 } }", {PARSE_SYNTAX_ERROR, 1, 10}},
      {"gain rw { rangevalid { 1 } }", {PARSE_SYNTAX_ERROR, 1, 10}},
      {"gain rw { rostrict { 1 } }", {PARSE_SYNTAX_ERROR, 1, 10}},
      {"gain rw { rangeValid} }", {PARSE_SYNTAX_ERROR, 1, 10}},
      {"gain rw { (x) }", {PARSE_SYNTAX_ERROR, 1, 10}},
      {"gain rw { { }", {PARSE_SYNTAX_ERROR, 1, 10}},
      {"gain rw { ctrlRO x", {PARSE_SYNTAX_ERROR, 1, 17}},
      {"gain rw { ctrlRO { x }", {PARSE_SYNTAX_ERROR, 1, 17}},
      {"gain rw { ctrlRO\n }", {PARSE_SYNTAX_ERROR, 2, 1}},
      {"gain rw { ctrlValid }", {PARSE_SYNTAX_ERROR, 1, 20}},
      {"gain rw { ctrlValid (a = 1) }", {PARSE_SYNTAX_ERROR, 1, 23}},
      {"gain rw { default (a) (b) { 1 }", {PARSE_SYNTAX_ERROR, 1, 22}},
      {"gain rw { default { } }", {PARSE_SYNTAX_ERROR, 1, 20}},
      {"gain rw { rangeValid { 0.. } }", {PARSE_SYNTAX_ERROR, 1, 27}},
      {"gain rw { rangeDoc { 0, } }", {PARSE_SYNTAX_ERROR, 1, 24}},
      {"gain rw { valueChange { 1 } }", {PARSE_SYNTAX_ERROR, 1, 26}},
      {"gain rw { index { a, } }", {PARSE_SYNTAX_ERROR, 1, 21}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_EQ(failureOf(c.text), c.stop);
  }
}

TEST(DefinitionParser, AcceptsTheParenthesisOfAConditionOnALaterLine) {
  EXPECT_EQ(recordsOf("a rw { ctrlRO\n\n(x)\nctrlValid\n# y\n( x ) }"),
            "a 4 {\nctrlRO (x)\nctrlValid (x)\n}\n");
}

TEST(DefinitionParser, RefusesAReadOnlyConditionOfAWriteOnlyParameterOnceItIsComplete) {
  struct Case {
    std::string_view text;
    Stop stop;
  };
  const Case cases[] = {
      {"a wo {  ctrlRO ( x ) }", {PARSE_INVALID_ACCESS, 1, 8}},
      {"a wo { default { 1 } ctrlRO(x)}", {PARSE_INVALID_ACCESS, 1, 21}},
      {"a wo {\n  ctrlRO ( x\n  + 1 ) }", {PARSE_INVALID_ACCESS, 3, 2}},
      {"a wo {\n  ctrlRO\n\t(x)\n}", {PARSE_INVALID_ACCESS, 3, 1}},
      {"a wo { ctrlRO ( x = 1 ) }", {PARSE_SYNTAX_ERROR, 1, 18}},  // not complete
      {"a rw { }\na wo { ctrlRO (x) }", {PARSE_INVALID_ACCESS, 2, 7}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    Parsed parsed;
    parsed.parse(linesOf(c.text));
    EXPECT_EQ(parsed.stop, c.stop);
    EXPECT_TRUE(parsed.records.find("a")->ctrlRO.empty());
  }
  EXPECT_EQ(recordsOf("a wo { ctrlValid (x) }\na rw { ctrlRO (y) }"),
            "a 4 {\nctrlRO (y)\nctrlValid (x)\n}\n");
}

TEST(DefinitionParser, RefusesANulByteOutsideComments) {
  struct Case {
    std::string text;
    Stop stop;
  };
  using namespace std::string_literals;
  const Case cases[] = {
      {"# a\0b\n"s, {PARSE_DONE, 1, 0}},
      {"gain\0 rw {\n"s, {PARSE_SYNTAX_ERROR, 1, 4}},
      {"\0# no comment\n"s, {PARSE_SYNTAX_ERROR, 1, 0}},
      {"a rw { default { \"x\0y\" } }"s, {PARSE_SYNTAX_ERROR, 1, 19}},
      {"a rw {\n }\0"s, {PARSE_SYNTAX_ERROR, 2, 2}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_EQ(failureOf(c.text), c.stop);
  }
}

TEST(DefinitionParser, EndsWordsAndSignsAtTheEndOfAPiece) {
  // A long line comes in pieces without newlines.
  Parsed parsed;
  parsed.parse({"gain", "rw { default { \"on", "e # ", "two\" } } h", "ue", " {"});
  EXPECT_EQ(textOf(parsed.records), "gain 4 {\ndefault () { 'one # two' }\n}\nh -1 {\n}\n");
  EXPECT_EQ(parsed.stop, (Stop{PARSE_INVALID_ACCESS, 5, 0}));
  EXPECT_EQ(parsed.records.find("h")->line, 4U);
  Parsed dots;
  dots.parse({"a rw { rangeValid { 0.", ".5 } }"});
  EXPECT_EQ(dots.stop, (Stop{PARSE_SYNTAX_ERROR, 1, 21}));
}

TEST(DefinitionParser, ReportsARecordThatIsGone) {
  Parsed parsed;
  parsed.parse({"gain rw {\n"});
  parsed.records = ParameterRecords();
  parsed.parse({"\n"});
  EXPECT_EQ(parsed.stop, (Stop{PARSE_INTERNAL_ERROR, 2, 0}));
}

TEST(DefinitionParser, StartsAnewAfterReset) {
  const std::string_view unfinished[] = {
      "a",
      "a rw",
      "a rw {",
      "a rw { ctrlRO ( x[",
      "a rw { rangeValid (m) { 0..",
      "a rw { default { \"one",
      "a rw { valueChange { \"one\" ->",
      "a rw { index { i",
      "a rw { unknown",
  };
  for (const std::string_view text : unfinished) {
    SCOPED_TRACE(text);
    Parsed parsed;
    parsed.parse({text});
    parsed.parser.reset();
    parsed.records = ParameterRecords();
    parsed.parse({"b wo { rangeValid { 1 } default { 2 } ctrlValid (x) }"});
    EXPECT_EQ(textOf(parsed.records),
              "b 3 {\nrangeValid () { [1] }\nctrlValid (x)\ndefault () { [2] }\n}\n");
  }
}

// Texts cut at their blanks; those that stand within quotes are written as "_" in the table.
TEST(DefinitionParser, ReadsTheSameRecordsWhereverATextIsCut) {
  const std::string_view texts[] = {
      "gain rw { index { chan , out } rangeValid { 0 .. 255 } ctrlRO ( mode == 2 ) default { 128 } "
      "}",
      "a rostrict { rangeDoc ( m [ 1 ] > - 3 ) { ( x ) .. ( y - - 1 ) , \"a_b\" , 7 } } b ro { }",
      "c wo { ctrlValid ( ( a ) $ \"_(_\" ) valueChange { \"_x\" -> 5 } valueChange { 1 -> \"y\" } "
      "}",
      "d rw { default ( k ) { \"__\" } default { ( \"p\" + q ) } } d index { rangeValid { } }",
  };
  for (const std::string_view text : texts) {
    std::string whole(text);
    for (char& c : whole) c = c == '_' ? ' ' : c;
    const std::string expected = recordsOf(whole);
    EXPECT_NE(expected, "");
    std::string everywhere = whole;
    for (size_t cut = 0; cut < text.size(); ++cut) {
      if (text[cut] != ' ') continue;
      std::string once = whole;
      once[cut] = everywhere[cut] = '\n';
      EXPECT_EQ(recordsOf(once), expected) << once;
      Parsed pieces;  // without a newline at the end of the first
      pieces.parse({std::string_view(whole).substr(0, cut), std::string_view(whole).substr(cut)});
      EXPECT_EQ(textOf(pieces.records), expected) << once;
    }
    EXPECT_EQ(recordsOf(everywhere), expected) << everywhere;
  }
}

TEST(DefinitionParser, TakesLongTextsInTheirStride) {
  constexpr int count = 20'000;
  Parsed parsed;
  const std::string name(1000, 'n');
  for (int i = 0; i < count; ++i) {
    parsed.parse({name + std::to_string(i % 100), " rw { default { 1 } }\n"});
  }
  parsed.parse({"sum rw { ctrlRO ( 0 "});
  for (int i = 0; i < count; ++i) parsed.parse({"+ x[\n", " 1 ] \n"});
  parsed.parse({") }"});
  EXPECT_EQ(parsed.stop.result, PARSE_DONE);
  EXPECT_EQ(parsed.records.size(), 101U);
  const ParameterRecord* const record = parsed.records.find(name + "0");
  EXPECT_EQ(std::distance(record->defaults.begin(), record->defaults.end()), 200);
  EXPECT_EQ(parsed.records.find("sum")->ctrlRO.front().tokens.size(), 2U * count + 1);
}

struct Accepted {
  int result;
  std::string printed;
};

Accepted accept(DefinitionParser& parser, DefinitionText& text, std::string_view line,
                uint32_t number) {
  testing::internal::CaptureStderr();
  const int result = acceptLine(parser, text, line, number);
  return {result, testing::internal::GetCapturedStderr()};
}

TEST(AcceptLine, PrintsNothingAndKeepsTheLineWhenItIsAccepted) {
  DefinitionParser parser;
  DefinitionText text;
  const Accepted first = accept(parser, text, "gain rw { default {\n", 1);
  EXPECT_EQ(first.result, PARSE_DONE);
  EXPECT_EQ(first.printed, "");
  const Accepted second = accept(parser, text, "128 } }", 2);
  EXPECT_EQ(second.result, PARSE_DONE);
  EXPECT_EQ(second.printed, "");
  EXPECT_EQ(textOf(text.records), "gain 4 {\ndefault () { [128] }\n}\n");
  EXPECT_EQ(text.lines.find(1), "gain rw { default {\n");
  EXPECT_EQ(text.lines.find(2), "128 } }");
}

TEST(AcceptLine, KeepsNoLineThatHasNoWords) {
  struct Case {
    std::string line;
    bool isKept;
  };
  const Case cases[] = {
      {"", false},
      {"\n", false},
      {" \t\v\f\r\n", false},
      {"# gain rw {}\n", false},
      {std::string(1000, ' ') + "#\n", false},
      {" }\n", true},
      {std::string(1000, ' ') + "}#", true},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.line);
    DefinitionParser parser;
    DefinitionText text;
    EXPECT_EQ(accept(parser, text, "gain rw {", 1).result, PARSE_DONE);
    EXPECT_EQ(accept(parser, text, c.line, 2).result, PARSE_DONE);
    EXPECT_EQ(text.lines.find(2).has_value(), c.isKept);
  }
}

TEST(AcceptLine, PrintsTheErrorWithTheLineAndACaret) {
  struct Case {
    std::string_view line;
    uint32_t number;
    Accepted expected;
  };
  const Case cases[] = {
      {"gain[2] rw {\n",
       3,
       {PARSE_INVALID_ACCESS,
        "Error on line 3\n"
        "Invalid parameter access type\n"
        "gain[2] rw {\n"
        "    ^\n"}},
      {"gain rw { ctrlRO x",
       70000,
       {PARSE_SYNTAX_ERROR,
        "Error on line 70000\n"
        "Syntax error\n"
        "gain rw { ctrlRO x\n"
        "                 ^\n"}},
      {"{ rw }\n",
       12,
       {PARSE_SYNTAX_ERROR,
        "Error on line 12\n"
        "Syntax error\n"
        "{ rw }\n"
        "     ^\n"}},
      {std::string_view("\0\n", 2),
       1,
       {PARSE_SYNTAX_ERROR, std::string("Error on line 1\n"
                                        "Syntax error\n"
                                        "\0\n"
                                        "^\n",
                                        33)}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.line);
    DefinitionParser parser;
    DefinitionText text;
    const Accepted accepted = accept(parser, text, c.line, c.number);
    EXPECT_EQ(accepted.result, c.expected.result);
    EXPECT_EQ(accepted.printed, c.expected.printed);
  }
}

TEST(AcceptLine, ReportsARecordThatIsGoneAsAnInternalError) {
  DefinitionParser parser;
  DefinitionText text;
  EXPECT_EQ(accept(parser, text, "gain rw {\n", 1).result, PARSE_DONE);
  DefinitionText other;
  const Accepted accepted = accept(parser, other, " }\n", 2);
  EXPECT_EQ(accepted.result, PARSE_INTERNAL_ERROR);
  EXPECT_EQ(accepted.printed,
            "Error on line 2\n"
            "Internal error\n"
            " }\n"
            "^\n");
}

}  // namespace
