// Texts that are not valid UTF-8: the bus takes none, so each stray byte goes out as U+FFFD.
#include "tests/harness/service_test.h"

namespace {

class Utf8Test : public ServiceTest {};

// A Latin-1 e acute, as an old text file has it, and what becomes of it.
#define LATIN "\xe9"
#define MADE_VALID "\xef\xbf\xbd"

TEST_F(Utf8Test, NamesAndTextsOfTheDefinitionReachTheBusValid) {
  serve(
      "mode rw { rangeValid { 0..1 } }\n"
      "caf" LATIN " rw { ctrlRO ( mode == 1 ) default { \"" LATIN "t" LATIN
      "\" } }\n"
      "pos" LATIN " index { rangeValid { \"" LATIN
      "\", \"b\", 1..2 } }\n"
      "size rw { index { pos" LATIN " } ctrlRO ( caf" LATIN
      " == 1 ) }\n"
      "list index { rangeValid { \"" LATIN
      "\", \"b\", 1..2 } }\n"
      "note rw { rangeValid { \"" LATIN "\", \"b\" } default { \"" LATIN "\" } }\n");
  const std::vector<std::string> announced = {
      ("caf" MADE_VALID "="),   "mode=1", "size[1]=", "size[2]=", "size[b]=",
      ("size[" MADE_VALID "]=")};
  expectFacts({
      {"start()", "0"},
      {"get_deps('size')", "['caf" MADE_VALID "', 'mode']"},
      {"get_range(0, 'note')", "(['b', '" MADE_VALID "'], [])"},
      {"get_range_bulk(0, ['note'])", "([('note', 'b'), ('note', '" MADE_VALID "')], [])"},
      {"get_parm_idx(0, 'size')", "['pos" MADE_VALID "']"},
      {"get_idx_range(0, 'list')", "(['b', '" MADE_VALID "'], [(1, 2)])"},
      {"single_reset('note')", "()", {"note=" MADE_VALID}},
      {"single_get('note')", "'" MADE_VALID "'"},
      {"get(0, 'note')", "'" MADE_VALID "'"},
      {"get_bulk(0, 1, ['note'])", "['" MADE_VALID "']"},
      {"single_get_bulk(1, ['note'])", "['" MADE_VALID "']"},
      {"single_set('mode', '1')", "()", announced},
      // What was made valid is another text: it names nothing and is not among the allowed ones.
      {"single_get('caf" MADE_VALID "')", "''"},
      {"single_set('caf" MADE_VALID "', '1')", "Set failed because parameter name is invalid"},
      {"single_is_valid('note', '" MADE_VALID "')", "false"},
  });
}

TEST_F(Utf8Test, ConstantsReachTheBusValid) {
  serve("", {"k=" LATIN "t" LATIN, LATIN "=1", "whole=\xc3\xa9"});
  expectFacts({
      {"single_get('k')", "'" MADE_VALID "t" MADE_VALID "'"},
      {"single_get('whole')", "'\xc3\xa9'"},
      {"single_get('" MADE_VALID "')", "''"},
  });
}

TEST_F(Utf8Test, ValidTextsAreLeftAlone) {
  serve(
      "caf\xc3\xa9 rw { rangeValid { \"\xe2\x82\xac\", \"\xf0\x9f\x8e\xac\" } }\n"
      "gain rw { }\n");
  expectFacts({
      {"single_set('caf\xc3\xa9', '\xe2\x82\xac')", "()", {"caf\xc3\xa9=\xe2\x82\xac"}},
      {"single_set('caf\xc3\xa9', '\xf0\x9f\x8e\xac')", "()", {"caf\xc3\xa9=\xf0\x9f\x8e\xac"}},
      {"start()", "2"},
      {"get_range(2, 'caf\xc3\xa9')", "(['\xe2\x82\xac', '\xf0\x9f\x8e\xac'], [])"},
      {"single_set('gain', '" MADE_VALID "')", "()", {"gain=" MADE_VALID}},
  });
}

TEST_F(Utf8Test, TheLogKeepsTheBytes) {
  serve("pos" LATIN " index { rangeValid { 1..2 } }\nsize rw { index { pos" LATIN " } }\n");
  expectFacts({
      {"single_set('size[3]', '1')",
       "Commit failed because parameter index is invalid",
       {},
       {"set: ERROR \"size\": Invalid index value[\"pos" LATIN "\"=\"3\"]", "Var list begin",
        "Var list end", "commit: ERROR \"size[3]\"=\"1\": ret=-3"}},
  });
}

TEST(Diagnostics, PrintTheLineAsItWasRead) {
  const Ending ending = runToEnd("caf" LATIN " rx { }\n");
  EXPECT_EQ(ending.status, 1);
  EXPECT_EQ(ending.err,
            "Error on line 1\nInvalid parameter access type\ncaf" LATIN " rx { }\n     ^\n");
}

}  // namespace
