// What is told of a definition and of a decision is the text's own statement.
#include <gtest/gtest.h>

#include "base/system_log.h"
#include "database/explain.h"
#include "sw/parm/statement_text.h"
#include "tests/support/random_texts.h"

namespace {

constexpr std::string_view DEVICE = R"(# A device.
mode rw { rangeValid { "slow", "fast" } default { "fast" } valueChange { "f" -> "fast" } }
port index {
  rangeValid { 3, 0x10, 1..2 }  rangeValid  ( mode=="slow" )
    # of the slow ones
    { 2, 1 }
  ctrlValid (BOARDS == 2)
}
rate rw { index { port }  rangeValid { 90..100 } ctrlValid (mode != "")	ctrlValid (BOARDS>0)
  rangeValid (BOARDS == 99) { 7 }
  ctrlRO(mode=="slow"&&port==2) default (mode == "slow") { (RATE / 2) }
  rangeValid { 0..10 }
}
near rw { rangeDoc { 9, 1 } rangeDoc (mode == "slow") { (RATE) } rangeDoc { (mode == "fast"), 5 } }
gone rostrict { ctrlValid (BOARDS == 99) }
rate rw { default { 0x5 } valueChange { "max"->1000 } }
odd ro { default { "h)"
                                    "\xf6"
                                    R"(he  # 
# no part
2" } }
)";

std::string shown(const SourceStatement& statement) {
  return std::to_string(statement.line) + ": " + statement.text;
}

template <typename List>
Texts shown(const List& statements) {
  Texts texts;
  for (const SourceStatement& statement : statements) texts.push_back(shown(statement));
  return texts;
}

Texts statementsOf(Database& database, const char* name) {
  const ParmEntry* const parm = database.findParm(name);
  return shown(
      database.sourceOf(parm != nullptr ? parm->lines : database.findIndexEntry(name)->lines));
}

class WrittenStatements : public testing::Test {
 protected:
  WrittenStatements() { define(database_, DEVICE, {{"BOARDS", "2"}, {"RATE", "8"}}); }

  Database database_;
};

// White space between words is one blank, whatever lines it goes over.
TEST(WrittenStatement, HasOneBlankBetweenWords) {
  const struct {
    std::string_view written;
    const char* statement;
  } cases[] = {
      {"rangeValid { 1 ..\n\t\n   3 }", "1: rangeValid { 1 .. 3 }"},
      {"rangeValid { 1,\n  \n   3 }", "1: rangeValid { 1, 3 }"},
      {"rangeValid { 1,\r\n    3,\r\n\r\n 5 }", "1: rangeValid { 1, 3, 5 }"},
      {"rangeValid\n\n \n{ 1,\n \n# 2,\n\t\n 3 }", "1: rangeValid { 1, 3 }"},
      {"\r\n\r\nrangeValid (1\n  \n== 1)\r\n \r\n{ 1 }\r\n \r\n", "3: rangeValid (1 == 1) { 1 }"},
      {"default {\n  \n\"a  b\"\n\t\n}", "1: default { \"a  b\" }"},
  };
  for (const auto& [written, statement] : cases) {
    SCOPED_TRACE(written);
    Database database;
    define(database, "a rw { " + std::string(written) + " }\n");
    EXPECT_EQ(statementsOf(database, "a"), Texts{statement});
  }
}

TEST_F(WrittenStatements, AreAllOfADefinitionInItsOrder) {
  const struct {
    const char* name;
    Texts statements;
  } cases[] = {
      {"mode",
       {R"(2: rangeValid { "slow", "fast" })", R"(2: default { "fast" })",
        R"(2: valueChange { "f" -> "fast" })"}},
      {"port",
       {"4: rangeValid { 3, 0x10, 1..2 }", R"(4: rangeValid ( mode=="slow" ) { 2, 1 })",
        "7: ctrlValid (BOARDS == 2)"}},
      // What does not count with these constants is there, too, and what comes later.
      {"rate",
       {"9: index { port }", "9: rangeValid { 90..100 }", R"(9: ctrlValid (mode != ""))",
        "9: ctrlValid (BOARDS>0)", "10: rangeValid (BOARDS == 99) { 7 }",
        R"(11: ctrlRO(mode=="slow"&&port==2))", R"(11: default (mode == "slow") { (RATE / 2) })",
        "12: rangeValid { 0..10 }", "16: default { 0x5 }", R"(16: valueChange { "max"->1000 })"}},
      {"gone", {"15: ctrlValid (BOARDS == 99)"}},
      {"odd", {"17: default { \"h\xf6he  # 2\" }"}},
  };
  for (const auto& [name, statements] : cases) {
    EXPECT_EQ(statementsOf(database_, name), statements) << name;
  }
  EXPECT_EQ(database_.lineOf(database_.findParm("rate")->lines), 9U);
}

// A question, and the statements that decide.
TEST_F(WrittenStatements, AreThoseThatDecide) {
  Transaction transaction(database_);
  EXPECT_EQ(transaction.set("mode", "slow", true), STAGE_DONE);
  const auto explained = [&](const char* name) {
    Explanation out;
    EXPECT_EQ(explain(database_, transaction.staged(), name, out), EXPLAIN_DONE) << name;
    return out;
  };
  const auto text = [](const Reason& reason) {
    return std::to_string(reason.line) + ": " + reason.statement;
  };
  const Explanation rate = explained("rate[2]");
  ASSERT_EQ(rate.existence.size(), 1U);
  EXPECT_EQ(text(rate.existence[0]), R"(9: ctrlValid (mode != ""))");
  EXPECT_EQ(text(rate.readOnly.at(0)), R"(11: ctrlRO(mode=="slow"&&port==2))");
  EXPECT_EQ(text(*rate.limit), "9: rangeValid { 90..100 } rangeValid { 0..10 }");
  EXPECT_EQ(text(*rate.defaultDecider), R"(11: default (mode == "slow") { (RATE / 2) })");
  EXPECT_EQ(text(explained("rate[16]").existence.at(0)),
            R"(4: rangeValid ( mode=="slow" ) { 2, 1 })");
  EXPECT_EQ(text(explained("rate[17]").existence.at(0)), "4: rangeValid { 3, 0x10, 1..2 }");
  EXPECT_EQ(text(explained("gone").existence.at(0)), "15: ctrlValid (BOARDS == 99)");
  EXPECT_EQ(text(explained("gone").readOnly.at(0)), "15: rostrict");
  EXPECT_EQ(text(*explained("near").limit), R"(14: rangeDoc (mode == "slow") { (RATE) })");
  EXPECT_EQ(transaction.set("mode", "fast", true), STAGE_DONE);
  EXPECT_EQ(text(*explained("near").limit),
            R"(14: rangeDoc { 9, 1 } rangeDoc { (mode == "fast"), 5 })");
  EXPECT_EQ(text(*explained("rate[1]").defaultDecider), "16: default { 0x5 }");
  EXPECT_EQ(transaction.set("mode", "slow", true), STAGE_DONE);
  ValueExplanation value;
  EXPECT_EQ(explainValue(database_, transaction.staged(), "rate[1]", "max", true, value),
            EXPLAIN_DONE);
  ASSERT_EQ(value.reasons.steps.size(), 2U);
  EXPECT_EQ(text(value.reasons.steps[0].reason), R"(16: valueChange { "max"->1000 })");
  EXPECT_EQ(text(value.reasons.steps[1].reason), "9: rangeValid { 90..100 } rangeValid { 0..10 }");
}

// All that the engine holds of a definition.
std::string heldBy(const IndexDef& definition) {
  const Variables& variables = definition.variables();
  std::string held = definition.name() + "\n";
  for (const Program& condition : definition.validityConditions()) {
    held += controlText("ctrlValid", condition, variables) + "\n";
  }
  for (const ConditionalBounds& bounds : definition.conditionalBounds()) {
    held += rangeText("rangeValid", bounds, variables) + "\n";
  }
  held += baseText(definition.baseBounds()) + "\n";
  for (const auto& [from, to] : definition.translations()) held += translationText(from, to) + "\n";
  return held;
}

std::string heldBy(const ParmDef& parm) {
  std::string held =
      heldBy(static_cast<const IndexDef&>(parm)) + fallbackText(parm.fallbackDefault());
  for (const IndexDef* index : parm.indices()) held += " " + index->name();
  held += "\n";
  for (const Program& condition : parm.readOnlyConditions()) {
    held += controlText("ctrlRO", condition, parm.variables()) + "\n";
  }
  for (const auto& [condition, value] : parm.defaults()) {
    held += defaultText(condition, value, parm.variables()) + "\n";
  }
  for (const ConditionalBounds& bounds : parm.documentedRanges()) {
    held += rangeText("rangeDoc", bounds, parm.variables()) + "\n";
  }
  return held;
}

std::string heldBy(Database& database) {
  std::string held;
  for (const IndexEntry* entry : database.indicesInNameOrder()) held += heldBy(*entry->index);
  for (const ParmEntry* entry : database.parmsInNameOrder()) held += heldBy(entry->parm);
  return held;
}

// A text that has the statements which are told of each definition.
std::string toldBy(Database& database) {
  std::string text;
  const auto add = [&](const std::string& name, std::string_view access, uint32_t lines) {
    text.append(name).append(" ").append(access).append(" {");
    for (const SourceStatement& each : database.sourceOf(lines)) text += " " + each.text;
    text += " }\n";
  };
  for (const IndexEntry* entry : database.indicesInNameOrder()) {
    add(entry->index->name(), "index", entry->lines);
  }
  for (const ParmEntry* entry : database.parmsInNameOrder()) {
    add(entry->parm.name(), accessText(entry->parm.access()), entry->lines);
  }
  return text;
}

// `text`, whose quotes have no blanks, with other white space, and with comments.
std::string spaced(const std::string& text, RandomTexts& random) {
  const Texts blanks = {" ",      " ",       "  ",      "\t", "\n", "\r\n", "\n# a \"comment\" {\n",
                        "\n\n\f", "\n \t\n", "\r\n\r\n"};
  std::string out;
  for (const char c : text) {
    if (c == ' ') {
      out += random.oneOf(blanks);
    } else {
      out += c;
    }
  }
  return out;
}

TEST(RandomWrittenStatements, MakeTheSameDefinitions) {
  const LogRedirection silence([](const std::string& /*line*/) {});
  size_t compared = 0;
  for (uint32_t seed = 0; seed < 1000; ++seed) {
    RandomTexts random(seed);
    const std::string text = random.text();
    Database plain;
    if (defineOrRefuse(plain, text) != 0) continue;
    SCOPED_TRACE(text);
    Database written;
    ASSERT_EQ(defineOrRefuse(written, spaced(text, random)), 0);
    EXPECT_EQ(toldBy(written), toldBy(plain));
    Database told;
    ASSERT_EQ(defineOrRefuse(told, toldBy(written)), 0) << toldBy(written);
    ASSERT_EQ(heldBy(told), heldBy(plain));
    EXPECT_EQ(toldBy(told), toldBy(plain));
    ++compared;
  }
  EXPECT_GT(compared, 200U);
}

}  // namespace
