#include "deflang/text/definition_grammar.h"

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

// A text as it is read, up to the first error.
struct Parsed {
  ParameterRecords records;
  Stop stop = {PARSE_DONE, 0, 0};

  void parse(const std::vector<std::string_view>& lines) {
    TextCursor cursor(pulledFrom(lines), records.arena());
    stop.result = readDefinitions(cursor, records);
    stop.line = cursor.position().line;
    stop.column = cursor.position().column;
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

TEST(ReadDefinitions, ReadsADefinitionSpreadOverLines) {
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

TEST(ReadDefinitions, KeepsEveryStatementInItsOrder) {
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

TEST(ReadDefinitions, KnowsEveryAccessWord) {
  EXPECT_EQ(recordsOf("e rw{}d wo {} c rostrict {} b ro { } a index {}"),
            "a 0 {\n}\nb 1 {\n}\nc 2 {\n}\nd 3 {\n}\ne 4 {\n}\n");
}

TEST(ReadDefinitions, TakesNearlyAnyWordAsAName) {
  EXPECT_EQ(recordsOf("a{b rw {}\n(c) rw {}\nd\xf6#\" rw {} } rw {} index index {}"),
            "(c) 4 {\n}\na{b 4 {\n}\nd\xf6#\" 4 {\n}\nindex 0 {\n}\n} 4 {\n}\n");
}

TEST(ReadDefinitions, AcceptsLinesThatSayNothing) {
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

TEST(ReadDefinitions, DropsACommentInsideAnOpenTextOrSuffixWhole) {
  EXPECT_EQ(recordsOf("a rw { default { \"one\n"
                      "  # not \" this\n"
                      " two # but this\" } }"),
            "a 4 {\ndefault () { 'one two # but this' }\n}\n");
  EXPECT_EQ(recordsOf("a rw { ctrlRO ( b[\n# ] )\n1] ) }"), "a 4 {\nctrlRO (b[1])\n}\n");
}

TEST(ReadDefinitions, HasNoOtherUseForTheCommentSign) {
  EXPECT_EQ(recordsOf("a#b rw { } # rw { }"), "# 4 {\n}\na#b 4 {\n}\n");
  EXPECT_EQ(failureOf("a rw { # no comment\n"), (Stop{PARSE_SYNTAX_ERROR, 1, 7}));
}

TEST(ReadDefinitions, JoinsAQuotedTextOverLines) {
  EXPECT_EQ(recordsOf("a rw { default { \"first \n"
                      "\n"
                      "  second\" } }"),
            "a 4 {\ndefault () { 'first   second' }\n}\n");
}

TEST(ReadDefinitions, MergesDefinitionsOfOneName) {
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

TEST(ReadDefinitions, KeepsWhatAnUnfinishedTextSaidSoFar) {
  EXPECT_EQ(recordsOf("a rw { default { 1 }\n ctrlRO ( x"), "a 4 {\ndefault () { [1] }\n}\n");
  EXPECT_EQ(recordsOf("a"), "a -1 {\n}\n");
}

TEST(ReadDefinitions, FailsWithTheCaretAtTheFailingStep) {
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

TEST(ReadDefinitions, AcceptsTheParenthesisOfAConditionOnALaterLine) {
  EXPECT_EQ(recordsOf("a rw { ctrlRO\n\n(x)\nctrlValid\n# y\n( x ) }"),
            "a 4 {\nctrlRO (x)\nctrlValid (x)\n}\n");
}

TEST(ReadDefinitions, RefusesAReadOnlyConditionOfAWriteOnlyParameterOnceItIsComplete) {
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

TEST(ReadDefinitions, RefusesANulByteOutsideComments) {
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

TEST(ReadDefinitions, EndsWordsAndSignsAtTheEndOfAPiece) {
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

// Texts cut at their blanks; those within quotes are written as "_" in the table.
TEST(ReadDefinitions, ReadsTheSameRecordsWhereverATextIsCut) {
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

TEST(ReadDefinitions, TakesLongTextsInTheirStride) {
  constexpr int count = 20'000;
  const std::string name(1000, 'n');
  std::vector<std::string> pieces;
  for (int i = 0; i < count; ++i) {
    pieces.push_back(name + std::to_string(i % 100));
    pieces.emplace_back(" rw { default { 1 } }\n");
  }
  pieces.emplace_back("sum rw { ctrlRO ( 0 ");
  for (int i = 0; i < count; ++i) pieces.insert(pieces.end(), {"+ x[\n", " 1 ] \n"});
  pieces.emplace_back(") }");
  Parsed parsed;
  parsed.parse({pieces.begin(), pieces.end()});
  EXPECT_EQ(parsed.stop.result, PARSE_DONE);
  EXPECT_EQ(parsed.records.size(), 101U);
  const ParameterRecord* const record = parsed.records.find(name + "0");
  EXPECT_EQ(std::distance(record->defaults.begin(), record->defaults.end()), 200);
  EXPECT_EQ(parsed.records.find("sum")->ctrlRO.front().tokens.size(), 2U * count + 1);
}

struct ReadText {
  int result;
  std::string printed;
};

ReadText readAll(std::string_view lines, DefinitionText& text) {
  testing::internal::CaptureStderr();
  const int result = readDefinitionText(linesIn(lines), text);
  return {result, testing::internal::GetCapturedStderr()};
}

TEST(ReadDefinitionText, PrintsNothingAndKeepsTheLinesWhenItIsAccepted) {
  DefinitionText text;
  const ReadText read = readAll("gain rw { default {\n128 } }", text);
  EXPECT_EQ(read.result, PARSE_DONE);
  EXPECT_EQ(read.printed, "");
  EXPECT_EQ(textOf(text.records), "gain 4 {\ndefault () { [128] }\n}\n");
  EXPECT_EQ(text.lines.find(1), "gain rw { default {\n");
  EXPECT_EQ(text.lines.find(2), "128 } }");
}

TEST(ReadDefinitionText, KeepsNoLineThatHasNoWords) {
  struct Case {
    std::string line;
    bool isKept;
  };
  const Case cases[] = {
      {"\n", false},
      {" \t\v\f\r\n", false},
      {"# gain rw {}\n", false},
      {std::string(1000, ' ') + "#\n", false},
      {" }\n", true},
      {std::string(1000, ' ') + "}#", true},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.line);
    DefinitionText text;
    EXPECT_EQ(readAll("gain rw {\n" + c.line, text).result, PARSE_DONE);
    EXPECT_EQ(text.lines.find(2).has_value(), c.isKept);
  }
}

TEST(ReadDefinitionText, PrintsTheErrorWithTheLineAndACaret) {
  struct Case {
    std::string text;
    ReadText expected;
  };
  const Case cases[] = {
      {"\n\ngain[2] rw {\n",
       {PARSE_INVALID_ACCESS,
        "Error on line 3\n"
        "Invalid parameter access type\n"
        "gain[2] rw {\n"
        "    ^\n"}},
      {std::string(69'999, '\n') + "gain rw { ctrlRO x",
       {PARSE_SYNTAX_ERROR,
        "Error on line 70000\n"
        "Syntax error\n"
        "gain rw { ctrlRO x\n"
        "                 ^\n"}},
      {"{ rw }\ngain rw { }\n",
       {PARSE_SYNTAX_ERROR,
        "Error on line 1\n"
        "Syntax error\n"
        "{ rw }\n"
        "     ^\n"}},
      {std::string("\0\n", 2),
       {PARSE_SYNTAX_ERROR, std::string("Error on line 1\n"
                                        "Syntax error\n"
                                        "\0\n"
                                        "^\n",
                                        33)}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    DefinitionText text;
    const ReadText read = readAll(c.text, text);
    EXPECT_EQ(read.result, c.expected.result);
    EXPECT_EQ(read.printed, c.expected.printed);
  }
}

// What is wrong is told before the rest of the text is asked for.
TEST(ReadDefinitionText, AsksForNoLineBehindTheWrongOne) {
  int asked = 0;
  DefinitionText text;
  testing::internal::CaptureStderr();
  const auto nextLine = [&asked](std::string_view& line) {
    line = ++asked == 2 ? "}" : "gain rw\n";
    return true;
  };
  EXPECT_EQ(readDefinitionText(nextLine, text), PARSE_SYNTAX_ERROR);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "Error on line 2\nSyntax error\n}\n^\n");
  EXPECT_EQ(asked, 2);
}

// Writes down what it is told, and goes on behind the character at which something is wrong.
class Narrator : public ReadingObserver {
 public:
  explicit Narrator(Resumption next) : next_(next) {}

  void onDefinition(const ParameterRecord& record, Position at) override {
    tell("definition " + std::string(record.name), at);
  }
  void onKeyword(const ParameterRecord& /*record*/, std::string_view keyword,
                 Position at) override {
    tell("keyword " + std::string(keyword), at);
  }
  void onStatement(const ParameterRecord& /*record*/, std::string_view keyword, Position /*at*/,
                   Position end) override {
    tell("end of " + std::string(keyword), end);
  }
  void onDefinitionEnd(const ParameterRecord& record, Position end) override {
    tell("end of " + std::string(record.name), end);
  }
  Resumption onError(TextCursor& cursor, const ParameterRecord* record) override {
    const std::string open = record == nullptr ? "no definition" : std::string(record->name);
    tell((cursor.result() == PARSE_DONE ? "unfinished " : "wrong in ") + open, cursor.position());
    if (cursor.result() == PARSE_DONE) return RESUME_NOWHERE;
    cursor.recover();
    cursor.advance(1);
    return next_;
  }

  std::vector<std::string> told;

 private:
  void tell(const std::string& what, Position at) {
    told.push_back(std::to_string(at.line) + ":" + std::to_string(at.column) + " " + what);
  }

  Resumption next_;
};

TEST(ReadDefinitions, TellsAnObserverWhatItReadsAndGoesOnWhereItSays) {
  struct Case {
    std::string_view text;
    Resumption next;
    std::vector<std::string> told;
  };
  const Case cases[] = {
      {"p rw {\n default { 1 } }",
       RESUME_NOWHERE,
       {"1:0 definition p", "2:1 keyword default", "2:14 end of default", "2:16 end of p"}},
      {"p rw { default { = } } q rw { }",
       RESUME_NOWHERE,
       {"1:0 definition p", "1:7 keyword default", "1:17 wrong in p"}},
      {"p rw { = } q rw { }",
       RESUME_STATEMENT,
       {"1:0 definition p", "1:7 wrong in p", "1:10 end of p", "1:11 definition q",
        "1:19 end of q"}},
      {"p = q rw { }",
       RESUME_DEFINITION,
       {"1:0 definition p", "1:2 wrong in p", "1:4 definition q", "1:12 end of q"}},
      {"p rw {\n default { 1",
       RESUME_STATEMENT,
       {"1:0 definition p", "2:1 keyword default", "2:0 unfinished p"}},
      {"p", RESUME_STATEMENT, {"1:0 definition p", "1:0 unfinished p"}},
      {" ", RESUME_STATEMENT, {}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    ParameterRecords records;
    TextCursor cursor(linesIn(c.text), records.arena());
    Narrator narrator(c.next);
    static_cast<void>(readDefinitions(cursor, records, &narrator));
    EXPECT_EQ(narrator.told, c.told);
  }
}

TEST(ReadDefinitions, TellsItsWords) {
  for (const std::string_view word : accessWords()) {
    ParameterRecords records;
    const std::string text = "p " + std::string(word) + " { }";
    TextCursor cursor(linesIn(text), records.arena());
    EXPECT_EQ(readDefinitions(cursor, records), PARSE_DONE) << word;
  }
  EXPECT_EQ(accessWords().size(), 5U);
  EXPECT_EQ(statementKeywords().size(), 7U);
}

}  // namespace
