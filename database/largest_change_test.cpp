#include "database/largest_change.h"

#include <gtest/gtest.h>

#include "base/system_log.h"
#include "tests/support/database.h"

namespace {

struct Case {
  const char* subject;
  std::string text;
  std::string line;  // in the system log; empty for none
};

// "(a + a + ...)", an expression of so many names.
std::string sumOf(const std::string& name, int count) {
  std::string sum = "(" + name;
  for (int i = 1; i < count; ++i) sum += " + " + name;
  return sum + ")";
}

TEST(LargestChange, IsTheOneThatTheLogTellsOf) {
  const std::string many =
      "i index { rangeValid { 1..1000 } }\nj index { rangeValid { 1..1000 } }\n";
  const Case cases[] = {
      {"no parameters", "", ""},
      {"a plain text", "a rw { }\nb rw { rangeValid { 0..(a) } }\n", ""},
      {"a million instances that cost little",
       many + "a rw { }\nb rw { index { i, j } ctrlRO (a == 1) }\n", ""},
      {"a million that cost too much",
       many + "a rw { }\nb rw { index { i, j } ctrlRO " + sumOf("a", 1000) + " }\n",
       R"(start: ERROR "a": 4723000300 units of work, 2000000000 allowed)"},
      {"a chain: its beginning brings about the most",
       "i index { rangeValid { 1..999000 } }\nc rw { ctrlRO (a) }\na rw { ctrlRO (b) }\nb rw { }\n"
       "d rw { index { i } ctrlRO " +
           sumOf("c", 1000) + " }\n",
       R"(start: ERROR "b": 4518477954 units of work, 2000000000 allowed)"},
      {"two that are too much only together",
       many + "a rw { }\nb rw { }\nc rw { index { i, j } ctrlRO " + sumOf("a", 200) +
           " }\nd rw { index { i, j } ctrlRO " + sumOf("b", 200) + " }\n",
       ""},
      {"of two the larger",
       many + "a rw { }\nb rw { }\nc rw { index { i, j } ctrlRO " + sumOf("a", 1000) +
           " }\nd rw { index { i, j } ctrlRO " + sumOf("b", 1001) + " }\n",
       R"(start: ERROR "b": 4727000300 units of work, 2000000000 allowed)"},
      {"two that name each other",
       many + "a rw { ctrlRO (b == 1) }\nb rw { ctrlRO (a == 1) }\nc rw { index { i, j } ctrlRO " +
           sumOf("b", 1000) + " }\n",
       R"(start: ERROR "a": 1000002 dependent instances, 1000000 allowed)"},
      {"one that names itself",
       many + "a rw { ctrlRO (a == 1) }\nb rw { index { i, j } ctrlRO " + sumOf("a", 1000) + " }\n",
       R"(start: ERROR "a": 1000001 dependent instances, 1000000 allowed)"},
      {"one that follows its own figure",
       many + "a rw { rangeValid { (vidStd::a::spal) } }\nb rw { index { i, j } ctrlRO " +
           sumOf("a", 1000) + " }\n",
       R"(start: ERROR "a": 1000001 dependent instances, 1000000 allowed)"},
      {"too many instances",
       "i index { rangeValid { 1..1000001 } }\na rw { }\nb rw { index { i } ctrlRO (a == 1) }\n",
       R"(start: ERROR "a": 1000001 dependent instances, 1000000 allowed)"},
      {"nothing depends on many",
       "i index { rangeValid { 1..1000001 } }\na rw { }\nb rw { index { i } }\n", ""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.subject);
    Database database;
    define(database, c.text);
    std::string log;
    const LogRedirection redirection([&](const std::string& line) { log += line; });
    reportLargestChange(database);
    EXPECT_EQ(log, c.line);
  }
}

TEST(LargestChange, IsLookedForOnlyWhereAllTogetherAreTooMuch) {
  const std::pair<const char*, bool> cases[] = {{"1..999999", false}, {"1..1000000", true}};
  for (const auto& [range, isFound] : cases) {
    SCOPED_TRACE(range);
    Database database;
    define(database, "i index { rangeValid { " + std::string(range) +
                         " } }\na rw { ctrlRO (b == 1) }\nb rw { index { i } }\n");
    EXPECT_EQ(findLargestChange(database).parm != nullptr, isFound);
  }
}

}  // namespace
