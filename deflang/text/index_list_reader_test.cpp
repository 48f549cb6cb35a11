#include "deflang/text/index_list_reader.h"

#include <gtest/gtest.h>

#include "tests/support/reader.h"

namespace {

Stop readText(IndexListReader& reader, std::string_view text) {
  return feedLines([&reader](Cursor& cursor) { return reader.read(cursor); }, linesOf(text));
}

TEST(IndexListReader, ReadsNamesWithTheirPlaces) {
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
    IndexListReader reader;
    EXPECT_EQ(readText(reader, c.text).result, PARSE_DONE);
    const IndexStatement statement = reader.take();
    EXPECT_EQ(textOf(statement), c.names);
    ASSERT_EQ(statement.size(), c.places.size());
    for (size_t i = 0; i < c.places.size(); ++i) EXPECT_EQ(textOf(statement[i].at), c.places[i]);
  }
}

TEST(IndexListReader, EndsAfterItsBrace) {
  IndexListReader reader;
  EXPECT_EQ(readText(reader, "{ a } }"), (Stop{PARSE_DONE, 1, 5}));
}

TEST(IndexListReader, FailsWithTheCaretAtTheFirstWrongCharacter) {
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
    IndexListReader reader;
    EXPECT_EQ(readText(reader, c.text), c.stop);
  }
}

TEST(IndexListReader, GoesOnWithTheNextLineAtEveryStage) {
  const std::string_view whole = " { a , b } ";
  for (size_t length = 0; length + 1 < whole.size(); ++length) {
    if (whole[length] != ' ') continue;
    SCOPED_TRACE(whole.substr(0, length));
    IndexListReader reader;
    EXPECT_EQ(readText(reader, whole.substr(0, length)).result, PARSE_CONTINUES);
    EXPECT_EQ(readText(reader, whole.substr(length)).result, PARSE_DONE);
    EXPECT_EQ(textOf(reader.take()), "{ a b }");
  }
}

TEST(IndexListReader, StartsAnewAfterReset) {
  for (const std::string_view before : {"{ a,", "{ a", "{ a }"}) {
    SCOPED_TRACE(before);
    IndexListReader reader;
    readText(reader, before);
    reader.reset();
    EXPECT_EQ(readText(reader, "{ b }").result, PARSE_DONE);
    EXPECT_EQ(textOf(reader.take()), "{ b }");
  }
}

TEST(IndexListReader, ForgetsAListThatNobodyTookOnReset) {
  IndexListReader reader;
  readText(reader, "{ a }");
  reader.reset();
  EXPECT_EQ(textOf(reader.take()), textOf(IndexListReader().take()));
}

}  // namespace
