#include "ctl/words/arguments.h"

#include <gtest/gtest.h>

namespace {

// What a word with names and --with takes of a command line.
std::string taken(std::vector<const char*> arguments) {
  arguments.insert(arguments.begin(), "ostrelctl");
  CLI::App app;
  app.require_subcommand(1, 1);
  CLI::App* const word = app.add_subcommand("get");
  word->fallthrough();
  static_cast<void>(app.add_subcommand("set"));
  Texts names;
  Texts with;
  bool isFlagged = false;
  app.add_flag("-q", isFlagged);
  addTexts(*word, "NAME", names, "");
  addWith(*word, with);
  Texts marked =
      markedArguments(static_cast<int>(arguments.size()), const_cast<char**>(arguments.data()));
  std::ranges::reverse(marked);
  try {
    app.parse(std::move(marked));
  } catch (const CLI::ParseError& error) {
    return "refused";
  }
  std::string all = isFlagged ? "q" : "";
  for (const std::string& name : names) all += " <" + name + ">";
  for (const std::string& each : with) all += " with <" + each + ">";
  return all;
}

TEST(Arguments, AreTakenAsTheyAre) {
  const struct {
    std::vector<const char*> arguments;
    std::string taken;
  } cases[] = {
      {{"get", "a", "b"}, " <a> <b>"},
      {{"get", "a", "-q"}, "q <a>"},
      {{"-q", "get", "a"}, "q <a>"},
      {{"get", "set"}, " <set>"},  // a parameter that is called as a word
      {{"get", "get"}, " <get>"},
      {{"get", "[a,b]"}, " <[a,b]>"},
      {{"get", "a=-5"}, " <a=-5>"},
      {{"get", "--with", "x=-1", "a", "--with=y=2", "b"}, " <a> <b> with <x=-1> with <y=2>"},
      {{"get", "--", "-a", "--with"}, " <-a> <--with>"},
      {{"get", "a", "--", "-q", "--"}, " <a> <-q> <-->"},
      {{"get", ""}, " <>"},
      {{"get", "a[*"}, " <a[*>"},
      {{"get", "a[b=c]"}, " <a[b=c]>"},
      {{"get", "a["}, "refused"},
      {{"get", "a[1]b"}, "refused"},
      {{"get", "--with", "a[1]=b[", "c"}, " <c> with <a[1]=b[>"},
      {{"get", "--with", "a[=1", "c"}, "refused"},
      {{"get"}, "refused"},
      {{"get", "-a"}, "refused"},
      {{"get", "a", "--with"}, "refused"},
      {{"--", "get", "a"}, "refused"},
  };
  for (const auto& c : cases) EXPECT_EQ(taken(c.arguments), c.taken);
}

TEST(Arguments, AreWholeNumbersOfARange) {
  const struct {
    const char* text;
    uint32_t least, most;
    const char* fault;
  } cases[] = {
      {"1", 1, 9, ""},
      {"9", 1, 9, ""},
      {"007", 1, 9, ""},
      {"4294967295", 0, 4294967295, ""},
      {"0", 1, 9, "\"0\" is not a whole number from 1 to 9"},
      {"10", 1, 9, "\"10\" is not a whole number from 1 to 9"},
      {"4294967296", 0, 4294967295, "\"4294967296\" is not a whole number from 0 to 4294967295"},
      {"-1", 0, 9, "\"-1\" is not a whole number from 0 to 9"},
      {"+1", 0, 9, "\"+1\" is not a whole number from 0 to 9"},
      {"0x1", 0, 9, "\"0x1\" is not a whole number from 0 to 9"},
      {"1 ", 0, 9, "\"1 \" is not a whole number from 0 to 9"},
      {"", 0, 9, "\"\" is not a whole number from 0 to 9"},
      {"\x01[1]", 0, 9, "\"[1]\" is not a whole number from 0 to 9"},
  };
  for (const auto& c : cases) {
    std::string text = c.text;
    EXPECT_EQ(wholeNumber(c.least, c.most)(text), c.fault);
  }
}

TEST(Arguments, AreNumbersFromZeroOn) {
  for (const std::string good : {"0", "1", "0.25", ".5", "1048576", "007"}) {
    std::string text = good;
    EXPECT_EQ(numberFromZero()(text), "") << good;
  }
  for (const std::string bad :
       {"", "x", "-1", "-0.1", "+1", "nan", "inf", "1e3", "0x1", "1 ", "1,5"}) {
    std::string text = bad;
    EXPECT_EQ(numberFromZero()(text), "\"" + bad + "\" is not a number from 0 on");
  }
}

TEST(ArgumentsDeathTest, EndTheProgramWhereTheyAreNoAssignments) {
  EXPECT_EXIT(static_cast<void>(assignmentsOf({"a=1", "b"})), testing::ExitedWithCode(2),
              "\"b\" is not of the form NAME=VALUE");
  EXPECT_EXIT(static_cast<void>(assignmentsOf({"a=1", "a=2"})), testing::ExitedWithCode(2),
              "\"a\" is given two values");
  EXPECT_EQ(assignmentsOf({"a=1", "a[1]=2"}).size(), 2U);
}

}  // namespace
