// Start-up: the command line and the reading of the definition text, up to the service.
#include "tests/harness/service_test.h"

namespace {

constexpr const char* PARSING = "Parsing file.\n";
constexpr const char* MAKING = "Parsing file.\nMaking parameter definitions.\n";
constexpr int USAGE_STATUS = 64;  // argp's own

TEST(CommandLine, HelpListsTheOptions) {
  const Ending ending = runToEnd("", {"--help"});
  EXPECT_EQ(ending.status, 0);
  EXPECT_EQ(ending.err, "");
  EXPECT_EQ(ending.out,
            R"(Usage: ostrel [OPTION...] List of constant definitions. Format is "name=value"
ostrel -- Product parameter handler

  -b, --bus=STRING           D-Bus (well-known) bus name
  -d, --debug                Allow debugging - do not daemonize
  -o, --obj_path=STRING      D-Bus object path
  -?, --help                 Give this help list
      --usage                Give a short usage message
  -V, --version              Print program version

Mandatory or optional arguments to long options are also mandatory or optional
for any corresponding short options.

Report bugs to .
)");
}

TEST(CommandLine, UsageIsShort) {
  const Ending ending = runToEnd("", {"--usage"});
  EXPECT_EQ(ending.status, 0);
  EXPECT_EQ(ending.err, "");
  EXPECT_EQ(ending.out, R"(Usage: ostrel [-d?V] [-b STRING] [-o STRING] [--bus=STRING] [--debug]
            [--obj_path=STRING] [--help] [--usage] [--version]
            List of constant definitions. Format is "name=value"
)");
}

TEST(CommandLine, VersionTellsTheBuild) {
  const Ending ending = runToEnd("", {"--version"});
  EXPECT_EQ(ending.status, 0);
  EXPECT_EQ(ending.err, "");
  const char* const form =
      "^ostrel Built on (Jan|Feb|Mar|Apr|May|Jun|Jul|Aug|Sep|Oct|Nov|Dec) [ 1-3][0-9] [0-9]{4} "
      "[0-9]{2}:[0-9]{2}:[0-9]{2} \\[2\\.05 [^ ]+ [0-9a-f]{7}\\]\n\\z";
  EXPECT_TRUE(
      g_regex_match_simple(form, ending.out.c_str(), G_REGEX_DEFAULT, G_REGEX_MATCH_DEFAULT))
      << ending.out;
}

TEST(CommandLine, AnArgumentThatDefinesNothingEndsWithTheUsageBeforeAnyInput) {
  const Ending ending = runToEnd("not a definition text", {"--debug", "x=1", "name"});
  EXPECT_EQ(ending.status, USAGE_STATUS);
  EXPECT_EQ(ending.out, "");
  EXPECT_EQ(ending.err,
            R"(Usage: ostrel [OPTION...] List of constant definitions. Format is "name=value"
Try `ostrel --help' or `ostrel --usage' for more information.
)");
}

TEST(CommandLine, UnknownOptionsAndMissingArgumentsAreRefused) {
  const char* const hint = "Try `ostrel --help' or `ostrel --usage' for more information.\n";
  for (const char* argument : {"--nonsense", "--debug=1", "-x", "--bus", "-o"}) {
    SCOPED_TRACE(argument);
    const Ending ending = runToEnd("", {argument});
    EXPECT_EQ(ending.status, USAGE_STATUS);
    EXPECT_EQ(ending.out, "");
    EXPECT_TRUE(ending.err.ends_with(hint)) << ending.err;
  }
}

class ConstantsTest : public ServiceTest {};

TEST_F(ConstantsTest, ArgumentsAreSplitAtTheirFirstEqualsSign) {
  serve("", {"a=b=c", "=x", "e=", "blank= ", "number=0x10", "dash=-1"});
  expectFacts({
      {"single_get('a')", "'b=c'"},
      {"single_get('')", "'x'"},
      {"single_get('e')", "''"},
      {"single_get('blank')", "' '"},
      {"single_get('number')", "'0x10'"},
      {"single_get('dash')", "'-1'"},
      {"single_get('unknown')", "''"},
  });
}

TEST_F(ConstantsTest, TheFirstOfTwoDefinitionsStays) {
  serve("", {"x=1", "y=", "x=2", "y=3"});
  expectFacts({{"single_get('x')", "'1'"}, {"single_get('y')", "''"}});
}

TEST_F(ConstantsTest, AParameterIsSeenBeforeAConstantOfItsName) {
  serve("x rw { }", {"x=1"});
  expectFacts({
      {"single_get('x')", "''"},
      {"single_set('x', '5')", "()", {"x=5"}},
      {"single_get('x')", "'5'"},
  });
}

TEST_F(ConstantsTest, ConstantsAreNoParameters) {
  serve("", {"x=1"});
  expectFacts({
      {"start()", "0"},
      {"get(0, 'x')", "'1'"},
      {"get_bulk(0, 1, ['x'])", "['1']"},
      {"is_valid(0, 'x', '1')", "false"},
      {"set(0, 'x', '2')", "Set failed because parameter name is invalid"},
      {"get_deps('x')", "Get deps failed because of invalid parameter name"},
      {"get_range(0, 'x')", "Get range failed because of invalid bounds (1)"},
  });
}

struct LineCase {
  size_t blanks;       // before the newline of line 1
  unsigned errorLine;  // the number under which the next line is reported
};

TEST(DefinitionInput, EachPieceOf1024CharactersCountsAsALine) {
  const LineCase cases[] = {
      {0, 2},    {1023, 2},  // with its newline 1024 characters
      {1024, 3},             // the newline is a piece of its own
      {2047, 3}, {2048, 4}, {102400, 102},
  };
  for (const LineCase& c : cases) {
    SCOPED_TRACE(c.blanks);
    const Ending ending = runToEnd(std::string(c.blanks, ' ') + "\ngain bad { }\n");
    EXPECT_EQ(ending.status, 1);
    EXPECT_EQ(ending.out, PARSING);
    EXPECT_EQ(ending.err, "Error on line " + std::to_string(c.errorLine) +
                              "\nInvalid parameter access type\ngain bad { }\n     ^\n");
  }
}

TEST(DefinitionInput, AWordEndsWhereItsPieceEnds) {
  const std::string text = std::string(1022, ' ') + "gain rw { }\n";
  const Ending ending = runToEnd(text);
  EXPECT_EQ(ending.status, 1);
  EXPECT_EQ(ending.err, "Error on line 2\nInvalid parameter access type\nin rw { }\n^\n");
}

TEST(DefinitionInput, ACommentEndsWhereItsPieceEnds) {
  const Ending ending = runToEnd("#" + std::string(1023, 'x') + "gain bad { }\n");
  EXPECT_EQ(ending.status, 1);
  EXPECT_EQ(ending.err, "Error on line 2\nInvalid parameter access type\ngain bad { }\n     ^\n");
}

TEST(DefinitionInput, ReadingStopsAtTheFirstErrorWithoutWaitingForMore) {
  Daemon daemon({.text = "# one\na rw { }\nb rx { }\nc ry { }\n", .inputStaysOpen = true});
  const Ending ending = daemon.waitForEnd();
  EXPECT_EQ(ending.status, 1);
  EXPECT_EQ(ending.out, PARSING);
  EXPECT_EQ(ending.err, "Error on line 3\nInvalid parameter access type\nb rx { }\n  ^\n");
}

TEST(DefinitionInput, ATextThatCannotBeReadEndsWithStatus1) {
  struct InputCase {
    const char* redirection;
    const char* reason;
  };
  const InputCase cases[] = {{"</", "Is a directory"},
                             {"0>/dev/null", "Bad file descriptor"},
                             {"0<&-", "Bad file descriptor"}};
  for (const InputCase& c : cases) {
    SCOPED_TRACE(c.redirection);
    Daemon daemon({.redirections = c.redirection});
    const Ending ending = daemon.waitForEnd();
    EXPECT_EQ(ending.status, 1);
    EXPECT_EQ(ending.out, PARSING);
    EXPECT_EQ(ending.err, std::string("Error reading parameter definitions: ") + c.reason + "\n");
  }
}

TEST(DefinitionInput, DefinitionsThatCannotBeBuiltEndWithStatus1) {
  const Ending ending = runToEnd("a rw { rangeValid { 2..1 } }\n");
  EXPECT_EQ(ending.status, 1);
  EXPECT_EQ(ending.out, MAKING);
  EXPECT_EQ(ending.err,
            "Error on line 1\nInvalid range specifier. Parameter is \"a\"\n"
            "a rw { rangeValid { 2..1 } }\n                    ^\n");
}

class DefinitionTextTest : public ServiceTest {};

TEST_F(DefinitionTextTest, AByteOrderMarkInFrontIsNoPartOfTheFirstName) {
  serve("\xEF\xBB\xBFgain rw { }");
  expectFacts({{"single_set('gain', '1')", "()", {"gain=1"}}});
}

TEST_F(DefinitionTextTest, TheLastLineNeedsNoNewline) {
  serve("a rw { rangeValid { 0..9 } }\nb rw { rangeValid { 5..6 } }");
  expectFacts({{"single_is_valid('b', '5')", "true"}, {"single_is_valid('b', '7')", "false"}});
}

TEST_F(DefinitionTextTest, ADefinitionThatTheEndOfTheTextLeavesOpenIsBuilt) {
  serve("a rw { rangeValid { 0..9 } default { 4 }\nctrlRO ( 1 ==");
  expectFacts({{"single_reset('a')", "()", {"a=4"}}, {"single_is_valid('a', '10')", "false"}});
}

TEST_F(DefinitionTextTest, AQuotedTextIsJoinedAcrossLines) {
  serve(
      "a rw { default { \"one\n  two\n# not in the text\n\nthree\" } }\n"
      "b rw { default { \"cr\r\nlf\" } }\n"
      "c rw { ctrlRO ( a == \"x\ny\" ) rangeValid { \"p\nq\" } valueChange { \"1\n2\" -> \"p\n q\" "
      "} }\n");
  expectFacts({
      {"single_reset('a')", "()", {"a=one  twothree", "c=pq"}},
      {"single_reset('b')", "()", {"b=cr\rlf"}},
      {"single_is_valid('c', '12')", "false"},  // becomes "p q"
      {"single_is_valid('c', 'pq')", "true"},
      {"single_set('a', 'xy')", "()", {"a=xy"}},
      {"single_reset('c')", "()"},  // read-only now
  });
}

TEST_F(DefinitionTextTest, ANameWithoutAnAccessWordIsNoParameter) {
  serve("a rw { }\nb");
  expectFacts({
      {"single_set('a', '1')", "()", {"a=1"}},
      {"single_set('b', '1')", "Set failed because parameter name is invalid"},
  });
}

}  // namespace
