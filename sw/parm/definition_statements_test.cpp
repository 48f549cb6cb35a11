#include "sw/parm/definition_statements.h"

#include <gtest/gtest.h>

#include "tests/support/database.h"

namespace {

std::string shown(const std::vector<DefinitionStatement>& statements) {
  std::string text;
  for (const auto& [line, statement] : statements) {
    text += std::to_string(line) + " " + statement + "\n";
  }
  return text;
}

TEST(DefinitionStatements, SayAllThatADefinitionHolds) {
  Database database;
  define(database, R"(mode rw { rangeValid { "slow", "fast" } }
port index {
  rangeValid { 1..4 } ctrlValid (mode == "fast")
  rangeValid (mode == "slow") { 1 }
  valueChange { 9 -> 4 }
}
gain rw {
  default (mode == "slow") { 1 }
  index { port }
  rangeDoc (mode == "slow") { 0..2 }
  ctrlRO (mode == "fast")
  rangeValid { 0..9 }
  default { 7 }
  ctrlValid (mode)
}
state ro { ctrlRO (gain[1] == 1) rangeValid { 0..9 } }
plain rw { }
)");
  const struct {
    const char* name;
    const char* statements;
  } cases[] = {
      {"mode", "1 rangeValid { \"slow\", \"fast\" }\n"},
      {"gain",
       "14 ctrlValid (mode)\n12 rangeValid { 0..9 }\n10 rangeDoc (mode == \"slow\") { 0..2 }\n"
       "11 ctrlRO (mode == \"fast\")\n8 default (mode == \"slow\") { 1 }\n13 default { 7 }\n"},
      {"state", "16 rangeValid { 0..9 }\n16 ctrlRO (gain[1] == 1)\n"},
      {"plain", ""},
  };
  for (const auto& [name, statements] : cases) {
    const ParmEntry& entry = *database.findParm(name);
    EXPECT_EQ(shown(definitionStatements(entry.parm, database.linesOf(entry))), statements) << name;
  }
  const IndexEntry& port = *database.findIndexEntry("port");
  EXPECT_EQ(shown(definitionStatements(*port.index, database.linesOf(port))),
            "3 ctrlValid (mode == \"fast\")\n4 rangeValid (mode == \"slow\") { 1 }\n"
            "3 rangeValid { 1..4 }\n5 valueChange { 9 -> 4 }\n");
}

TEST(AccessTexts, AreTheWordsOfTheText) {
  Database database;
  define(database, "a rw { }\nb ro { }\nc rostrict { }\nd wo { }\ne ro { ctrlValid (1 == 0) }\n");
  for (const auto& [name, word] :
       {std::pair("a", "rw"), {"b", "ro"}, {"c", "rostrict"}, {"d", "wo"}, {"e", "ro"}}) {
    EXPECT_EQ(accessText(database.findParm(name)->parm.access()), word) << name;
  }
}

}  // namespace
