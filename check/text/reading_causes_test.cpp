// What is said about texts that cannot be read: one row for each mistake.
#include "check/text/reading_causes.h"

#include <gtest/gtest.h>

#include "tests/support/findings.h"

namespace {

struct ReadingCase {
  std::string text;
  std::vector<std::string> findings;
};

TEST(ReadingCauses, OfStatements) {
  const ReadingCase cases[] = {
      {"rangeValid { 0..9",
       {"1:1 error: the definition of \"a\" is not closed: a \"}\" is missing at the end of the "
        "text [open-definition]"}},
      {"rangeValid { \"a\" 'b' }", {"2:18 error: a \",\" is missing between two items [syntax]"}},
      {"rangeValid { 0.5 }",
       {"2:14 error: \"0.5\" is no number: numbers are whole, and a span has two dots, as in "
        "0..100 [syntax]"}},
      {"rangeValid { 0...9 }",
       {"2:15 error: a span is written with two dots, as in 0..100 [syntax]"}},
      {"rangeValid { 0:9 }",
       {"2:15 error: a span is written with two dots, as in 0..100 [syntax]"}},
      {"rangeValid { 0 - 9 }",
       {"2:16 error: a span is written with two dots, as in 0..100 [syntax]"}},
      {"rangeValid { 0..9..12 }", {"2:14 error: a span has two ends [syntax]"}},
      {"rangeValid { ..9 }", {"2:14 error: the lower end is missing before \"..\" [syntax]"}},
      {"rangeValid { 0.. }", {"2:18 error: the upper end is missing behind \"..\" [syntax]"}},
      {"rangeValid { 0..max - 1 }",
       {"2:17 error: an expression has to be in parentheses [syntax]"}},
      {"rangeValid { width * 2 }", {"2:14 error: an expression has to be in parentheses [syntax]"}},
      {"rangeValid { (width) * 2 }",
       {"2:22 error: the whole expression has to be in parentheses [syntax]"}},
      {"rangeValid (a)) { 1 } default { 1 }", {"2:15 error: this \")\" closes nothing [syntax]"}},
      {"rangeValid [a == 1] { 1 }",
       {"2:12 error: the condition of \"rangeValid\" has to be in parentheses: rangeValid "
        "(condition) { item, ... } [syntax]"}},
      {"default -> 5",
       {"2:9 error: there is no \"->\" behind a keyword: the form is default (condition) { value "
        "} [syntax]"}},
      {"default { - 3 }", {"2:11 error: the sign is directly before its number [syntax]"}},
      {"rangeValid { 0..1_000 }", {"2:17 error: a number has no separators [syntax]"}},
      {"rangeValid { \"a\" | \"b\" }", {"2:18 error: items are separated by \",\" [syntax]"}},
      {"valueChange { 1..2 -> 3 }",
       {"2:15 error: a translation has one source, and no span [syntax]"}},
      {"index { i = 1..2 }", {"2:11 error: a \",\" is missing between two names [syntax]"}},
      {"rangeValid rangeValid { 1 }", {"2:12 error: the keyword is written twice [syntax]"}},
      {"rangeValid { 0..FFh }", {"2:17 error: a hexadecimal number begins with 0x [syntax]"}},
      {"rangeValid { 0..$FF }", {"2:17 error: a hexadecimal number begins with 0x [syntax]"}},
      {"rangeValid { 0..min(a, 9) }", {"2:17 error: there is no function \"min\" [syntax]"}},
      {"rangeValid { 0..9 step 3 }",
       {"2:19 error: a span has no step: write the numbers as items [syntax]"}},
      {"rangeValid { 0..3 5..9 }", {"2:19 error: a \",\" is missing between two items [syntax]"}},
      {"rangeValid { * }",
       {"2:14 error: there is no \"*\": a definition without a range takes every value [syntax]"}},
      {"rangeValid { +-9 }",
       {"2:14 error: \"+-9\" is neither a number nor a text in quotes [syntax]"}},
      {"rangeValid { \u22129..9 }",
       {"2:14 error: \"\u22129..9\" is written otherwise: -9..9 [syntax]"}},
      {"rangeValid { (a) { 1 } }",
       {"2:18 error: the condition belongs before the braces: rangeValid (condition) { item, ... } "
        "[syntax]"}},
      {"rangeValid { \"10\\\" x\", \"b\" }",
       {"2:17 error: a text goes up to the next quote, and none can be written in it "
        "[open-quote]"}},
      {"ctrlRO (a := 1)", {"2:11 error: there is no operator \":=\": write \"==\" [syntax]"}},
      {"ctrlRO (a == 1 } default { 1 }",
       {"2:16 error: a \")\" closes the condition of \"ctrlRO\", and no \"}\" [syntax]"}},
      {"/* all */ default { 1 }",
       {"2:1 error: a comment begins with \"#\" and has to be on a line of its own "
        "[comment-after-code]"}},
      {"/* all\n of it */ default { 1 }",
       {"2:1 error: a comment begins with \"#\" and has to be on a line of its own "
        "[comment-after-code]"}},
      {"rangeValid { 1 /* all */ } default { 1 }",
       {"2:16 error: a comment begins with \"#\" and has to be on a line of its own "
        "[comment-after-code]"}},
      {"default\u00A0{ 1 }",
       {"2:1 error: \"default\u00A0\" has a character that looks like another one, or like none "
        "[unknown-keyword]"}},
      {"rangeValid { 5dB }",
       {"2:14 error: \"5dB\" is no number, as a number has no unit: write 5, or the text in quotes "
        "[unquoted-text]"}},
      {"rangeValid { 0..500ms }",
       {"2:17 error: \"500ms\" has a unit, and a number has none [syntax]"}},
      {"rangeValid { 0dB..10dB }", {"2:14 error: a number has no unit [syntax]"}},
      {"if (a) { rangeValid { 1 } } default { 1 }",
       {"2:1 error: there is no \"if\": a condition is a part of each statement, behind its "
        "keyword, as in rangeValid (condition) { item, ... } [unknown-keyword]"}},
      {"rangeValid (a) { 1 } else { 2 }",
       {"2:22 error: there is no \"else\": a statement for all other cases has a condition of its "
        "own, as in rangeValid (condition) { item, ... } [unknown-keyword]"}},
      {"rangeValid { 1080i/50 }",
       {"2:14 error: a text has to be in quotes: \"1080i/50\" [unquoted-text]"}},
      {"rangeValid { 08 }",
       {"2:14 error: \"08\" is no number: with a leading 0 it is octal [syntax]"}},
      {"rangeValid { -on }", {"2:14 error: a text has to be in quotes: \"-on\" [unquoted-text]"}},
      {"rangeValid { 0..9 )",
       {"2:19 error: a \"}\" closes the braces of \"rangeValid\", and no \")\" [syntax]"}},
      {"rangeValid { 0..9 ]",
       {"2:19 error: a \"}\" closes the braces of \"rangeValid\", and no \"]\" [syntax]"}},
      {"rangeValid { 0..9 ) } default { 1 }", {"2:19 error: this \")\" closes nothing [syntax]"}},
      {"rangeValid { [0..9] }", {"2:14 error: there are no brackets around items [syntax]"}},
      {"rangeValid [0..9]",
       {"2:12 error: the braces of \"rangeValid\" are missing: its form is rangeValid (condition) "
        "{ item, ... } [syntax]"}},
      {"rangeValid 0..9",
       {"2:12 error: the braces of \"rangeValid\" are missing: its form is rangeValid (condition) "
        "{ item, ... } [syntax]"}},
      {"rangeValid (0..9)",
       {"2:12 error: the items of \"rangeValid\" belong in braces, the parentheses hold a "
        "condition: rangeValid (condition) { item, ... } [syntax]"}},
      {"rangeValid (a) (a) { 1 }",
       {"2:16 error: a statement has one condition: join two of them with \"&&\" [syntax]"}},
      {"rangeValid if (a) { 1 }",
       {"2:12 error: a condition comes directly behind the keyword, without \"if\" [syntax]"}},
      {"rangeValid { \"a\"..\"b\" }",
       {"2:17 error: a span goes from number to number: write each text as an item [syntax]"}},
      {"rangeValid { 0..\"b\" }",
       {"2:17 error: a span goes from number to number: write each text as an item [syntax]"}},
      {"rangeValid { \"a\" -> 1 }",
       {"2:18 error: a translation belongs in a \"valueChange\" [syntax]"}},
      {"rangeValid { 1; 2 }", {"2:15 error: items are separated by \",\" [syntax]"}},
      {"rangeValid { 1, 2; }", {"2:18 error: items are separated by \",\" [syntax]"}},
      {"rangeValid { ON }",
       {"2:14 error: a text has to be in quotes: \"ON\", and a name in parentheses: (ON) "
        "[unquoted-text]"}},
      {"rangeValid { a }", {"2:14 error: an expression has to be in parentheses: (a) [syntax]"}},
      {"rangeValid { 1 2 }", {"2:16 error: a \",\" is missing between two items [syntax]"}},
      {"rangeValid { , 1 }", {"2:14 error: there is nothing to separate with this \",\" [syntax]"}},
      {"rangeValid { 1,, 2 }",
       {"2:16 error: there is nothing to separate with this \",\" [syntax]"}},
      {"rangeValid { { 1 } }", {"2:14 error: a \"{\" cannot come here [syntax]"}},
      {"default { }",
       {"2:11 error: \"default\" cannot be empty: its form is default (condition) { value } "
        "[syntax]"}},
      {"default { 1,000 }", {"2:11 error: a number has no separators [syntax]"}},
      {"default { 1, 2 }",
       {"2:12 error: a default has one value: write further ones in statements with conditions "
        "[syntax]"}},
      {"default { 0..9 }", {"2:11 error: a default has one value, no span [syntax]"}},
      {"default { \"a\" \"b\" }", {"2:15 error: a default has one value [syntax]"}},
      {"default { 1 2 }", {"2:13 error: a default has one value [syntax]"}},
      {"default auto",
       {"2:9 error: the braces of \"default\" are missing: its form is default (condition) { value "
        "} [syntax]"}},
      {"default = 5",
       {"2:9 error: there is no \"=\" behind a keyword: the form is default (condition) { value } "
        "[syntax]"}},
      {"default { 1 };",
       {"2:14 error: there is nothing to separate with \";\" between statements [syntax]"}},
      {"default { 1 },",
       {"2:14 error: there is nothing to separate with \",\" between statements [syntax]"}},
      {"default { 1 } }",
       {"3:1 warning: this \"}\" closes nothing: no definition is open here [syntax]"}},
      {"valueChange { \"a\" = 1 }",
       {"2:19 error: a \"->\" is missing between source and target [syntax]"}},
      {"valueChange { \"a\" : 1 }",
       {"2:19 error: a \"->\" is missing between source and target [syntax]"}},
      {"valueChange { a -> 1 }", {"2:15 error: a text has to be in quotes: \"a\" [unquoted-text]"}},
      {"valueChange { \"a\" -> on }",
       {"2:22 error: a text has to be in quotes: \"on\" [unquoted-text]"}},
      {"valueChange { -1 -> 1 }",
       {"2:15 error: a negative number has to be in quotes here: \"-1\" [unquoted-text]"}},
      {"valueChange { 1 -> -1 }",
       {"2:20 error: a negative number has to be in quotes here: \"-1\" [unquoted-text]"}},
      {"valueChange { 1 -> 2, 3 -> 4 }",
       {"2:21 error: a statement has one translation: write another \"valueChange\" [syntax]"}},
      {"valueChange { 1 -> }", {"2:20 error: the target is missing behind \"->\" [syntax]"}},
      {"valueChange { \"a\" 1 }",
       {"2:19 error: a \"->\" is missing between source and target [syntax]"}},
      {"valueChange (a) { 1 -> 2 }",
       {"2:13 error: \"valueChange\" has no condition: its form is valueChange { source -> target "
        "} [syntax]"}},
      {"valueChange { \"a\" -> (a) }",
       {"2:22 error: a translation has no expressions: source and target are quoted texts or "
        "numbers [syntax]"}},
      {"valueChange { \"a\" -> 1 2 }", {"2:24 error: \"valueChange\" has one target [syntax]"}},
      {"valueChange 1 -> 2",
       {"2:13 error: the braces of \"valueChange\" are missing: its form is valueChange { source "
        "-> target } [syntax]"}},
      {"index { }",
       {"2:9 error: \"index\" cannot be empty: its form is index { name, ... } [syntax]"}},
      {"index { i j }", {"2:11 error: a \",\" is missing between two names [syntax]"}},
      {"index i",
       {"2:7 error: the braces of \"index\" are missing: its form is index { name, ... } "
        "[syntax]"}},
      {"index (a) { i }",
       {"2:7 error: \"index\" has no condition: its form is index { name, ... } [syntax]"}},
      {"index { i, }", {"2:10 error: there is nothing to separate with this \",\" [syntax]"}},
      {"ctrlRO a == 1",
       {"2:8 error: the condition of \"ctrlRO\" has to be in parentheses: ctrlRO (expression) "
        "[syntax]"}},
      {"ctrlRO { a == 1 }",
       {"2:8 error: the condition of \"ctrlRO\" has to be in parentheses: ctrlRO (expression) "
        "[syntax]"}},
      {"ctrlRO (a = 1)", {"2:11 error: \"=\" does not compare: write \"==\" [single-equals]"}},
      {"ctrlRO (a === 1)", {"2:11 error: there is no operator \"===\": write \"==\" [syntax]"}},
      {"ctrlRO (a =< 1)", {"2:11 error: there is no operator \"=<\": write \"<=\" [syntax]"}},
      {"ctrlRO (! a)",
       {"2:9 error: there is no operator \"!\": compare with 0, as in \"(a == 0)\" [syntax]"}},
      {"ctrlRO ([1])",
       {"2:9 error: index values belong directly behind the name of a parameter [syntax]"}},
      {"ctrlRO (a])", {"2:10 error: this \"]\" closes nothing [syntax]"}},
      {"ctrlRO (a == 1", {"3:1 error: a \")\" is missing before \"}\" [syntax]"}},
      {"ctrlRO (a == 1))", {"2:16 error: this \")\" closes nothing [syntax]"}},
      {"ctrlRO (a == \"x)",
       {"2:14 error: the quote that opens here is not closed on line 2 [open-quote]"}},
      {"ctrlValid",
       {"3:1 error: the condition of \"ctrlValid\" has to be in parentheses: ctrlValid "
        "(expression) [syntax]"}},
      {"rangeValid { \"a, \"b\" }",
       {"2:14 error: the quote that opens here is not closed on line 2 [open-quote]"}},
      {"rangeValid { \"a\", b\" }",
       {"2:19 error: a text has to be in double quotes: \"b\" [unquoted-text]"}},
      {"rangevalid { 1 }",
       {"2:1 error: there is no statement \"rangevalid\": rangeValid, rangeDoc, ctrlRO, ctrlValid, "
        "default, valueChange or index is expected, or \"}\" [unknown-keyword]"}},
      {"range (a) { 1 } default { 1 }",
       {"2:1 error: there is no statement \"range\": rangeValid, rangeDoc, ctrlRO, ctrlValid, "
        "default, valueChange or index is expected, or \"}\" [unknown-keyword]"}},
      {"max 5 default { 1 }",
       {"2:1 error: there is no statement \"max\": rangeValid, rangeDoc, ctrlRO, ctrlValid, "
        "default, valueChange or index is expected, or \"}\" [unknown-keyword]"}},
      {"\"a\"",
       {"2:1 error: there is no statement \"a\": the values of a range belong in a \"rangeValid\" "
        "[unknown-keyword]"}},
      {"(a)", {"2:1 error: a condition belongs behind the keyword, before the braces [syntax]"}},
      {"{ 1 }",
       {"2:1 error: a statement begins with a keyword: rangeValid, rangeDoc, ctrlRO, ctrlValid, "
        "default, valueChange or index [syntax]"}},
      {"; default { 1 }",
       {"2:1 error: there is nothing to separate with \";\" between statements [syntax]"}},
      {"rw",
       {"2:1 error: there is no statement \"rw\": rangeValid, rangeDoc, ctrlRO, ctrlValid, "
        "default, valueChange or index is expected, or \"}\" [unknown-keyword]"}},
      {"# x", {}},
  };
  for (const ReadingCase& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_EQ(findingsOfReading("a rw {\n" + c.text + "\n}\n"), c.findings);
  }
}

TEST(ReadingCauses, OfDefinitions) {
  const ReadingCase cases[] = {
      {"b",
       {"1:1 error: the definition of \"b\" is not complete: it needs an access word and \"{ ... "
        "}\" [open-definition]"}},
      {"b rw",
       {"1:1 error: the definition of \"b\" is not complete: it needs an access word and \"{ ... "
        "}\" [open-definition]"}},
      {"b {",
       {"1:1 error: the definition of \"b\" is not closed: a \"}\" is missing at the end of the "
        "text [open-definition]",
        "1:1 error: \"b\" has no access word: index, ro, rostrict, wo or rw belongs behind it "
        "[unknown-access]"}},
      {"b { }",
       {"1:1 error: \"b\" has no access word: index, ro, rostrict, wo or rw belongs behind it "
        "[unknown-access]"}},
      {"b RW { }",
       {"1:3 error: \"RW\" is no access word: index, ro, rostrict, wo or rw belongs behind \"b\" "
        "[unknown-access]"}},
      {"b readwrite { }",
       {"1:3 error: \"readwrite\" is no access word: index, ro, rostrict, wo or rw belongs behind "
        "\"b\" [unknown-access]"}},
      {"b[1] rw { }",
       {"1:2 error: a definition has a name without index values; an index statement gives its "
        "indices [syntax]"}},
      {"rw b { }", {"1:1 error: the name comes before the access word: \"b rw\" [unknown-access]"}},
      {"rw { }", {"1:1 error: a name is missing before the access word \"rw\" [unknown-access]"}},
      {"b { rw default { 1 } }",
       {"1:3 error: the access word is before the brace [unknown-access]"}},
      {"b {\n rw\n default { 1 } }",
       {"2:2 error: the access word is before the brace [unknown-access]"}},
      {"int b rw { }",
       {"1:1 error: a definition begins with its name, and has no \"int\" [unknown-access]"}},
      {"b\u00A0rw { }",
       {"1:1 error: the white space in this word is none for the daemon: write a blank [syntax]"}},
      {"/* b\n c */ b rw { }",
       {"1:1 error: a comment begins with \"#\" and has to be on a line of its own "
        "[comment-after-code]"}},
      {"b rw { ctrlRO (1 } }",
       {"1:18 error: a \")\" closes the condition of \"ctrlRO\", and no \"}\" [syntax]"}},
      {"b rw { };\nc rw { };\n",
       {"1:9 error: there is nothing to separate with \";\" between definitions [syntax]",
        "2:9 warning: there is nothing to separate with \";\" between definitions [syntax]"}},
      {"b : rw { }",
       {"1:3 error: there is no \":\" between the name and the access word [unknown-access]"}},
      {"\"b c\" rw { }",
       {"1:1 error: a name has no quotes and no blanks: \"b_c\" [unknown-access]"}},
      {"b rw ro { }",
       {"1:6 error: a definition has one access word: \"ro\" is a second one [syntax]"}},
      {"b rw index { rangeValid { 0..1 } }",
       {"1:6 error: a definition has one access word: \"index\" is a second one [syntax]"}},
      {"b rw index { c } }",
       {"1:6 error: a \"{\" is missing before \"index\", behind the access word [syntax]"}},
      {"b rw default { 1 } }",
       {"1:6 error: a \"{\" is missing before \"default\", behind the access word [syntax]"}},
      {"b default { 1 } }",
       {"1:1 error: \"b\" has no access word: index, ro, rostrict, wo or rw belongs behind it "
        "[unknown-access]"}},
      {"b{ default { 1 } }",
       {"1:1 error: \"b\" has no access word: index, ro, rostrict, wo or rw belongs behind it "
        "[unknown-access]"}},
      {"} b rw { }", {"1:1 error: this \"}\" closes nothing: no definition is open here [syntax]"}},
      {"b rw { } }",
       {"1:10 warning: this \"}\" closes nothing: no definition is open here [syntax]"}},
      {"b rw { } } c rw { }",
       {"1:10 error: this \"}\" closes nothing: no definition is open here [syntax]"}},
      {"default { 1 } }", {"1:1 error: \"default\" is outside of a definition [syntax]"}},
      {"ctrlRO(1) }", {"1:1 error: \"ctrlRO\" is outside of a definition [syntax]"}},
      {"# c\nb rw { } # x\nc rw { }",
       {"2:10 error: a comment has to be on a line of its own [comment-after-code]"}},
      {"b rw { } //\nc rw { }",
       {"1:10 error: a comment begins with \"#\" and has to be on a line of its own "
        "[comment-after-code]"}},
      {"b rw {\n default { 1 }\nc rw { }",
       {"3:1 error: the definition of \"b\" is not closed: a \"}\" is missing before \"c\" "
        "[open-definition]"}},
      {"b rw {\n default {\n 1\n}\nc rw { }",
       {"5:1 error: the definition of \"b\" is not closed: a \"}\" is missing before \"c\" "
        "[open-definition]"}},
      {"b rw {\n default { 1\nc rw { }",
       {"3:1 error: the definition of \"b\" is not closed: a \"}\" is missing before \"c\" "
        "[open-definition]"}},
      {"this is no text",
       {"1:6 error: \"is\" is no access word: index, ro, rostrict, wo or rw belongs behind "
        "\"this\" [unknown-access]"}},
      {"b rw { ctrlRO (c) }\nsome words\nc rw { }",
       {"2:6 error: \"words\" is no access word: index, ro, rostrict, wo or rw belongs behind "
        "\"some\" [unknown-access]"}},
      {"x y z\nb rw { default { q } }",
       {"1:3 error: \"y\" is no access word: index, ro, rostrict, wo or rw belongs behind \"x\" "
        "[unknown-access]",
        "2:18 error: a text has to be in quotes: \"q\" [unquoted-text]"}},
  };
  for (const ReadingCase& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_EQ(findingsOfReading(c.text + "\n"), c.findings);
  }
}

}  // namespace
