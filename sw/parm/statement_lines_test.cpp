#include "sw/parm/statement_lines.h"

#include <gtest/gtest.h>

#include "deflang/text/definition_grammar.h"
#include "sw/parm/build/builder.h"
#include "tests/support/build.h"

namespace {

using Texts = std::vector<std::string>;

std::string shown(const SourceStatement& statement) {
  return std::to_string(statement.line) + ": " + statement.text;
}

Texts shown(const StatementsOfDefinition::List& list) {
  Texts texts;
  for (const SourceStatement& statement : list) texts.push_back(shown(statement));
  return texts;
}

TEST(StatementsOfDefinition, AreThoseOfTheText) {
  const BuiltText built(R"(mode rw { }
p rw {
  rangeValid { 0..9 }
  ctrlValid
    (mode == 1)
  rangeValid (mode == 2)
    { 1..2 }
  default (mode == 3) { 4 }  default { 5 }
  valueChange { "b" -> 1 }
  valueChange { "a" -> 1 }
  ctrlRO (mode == 4)
  ctrlRO (mode == 5)
  rangeDoc (mode == 6) { 7 }
  rangeDoc { 8 }
  default (mode == 9) { (mode) }
  rangeValid { 20 }
})");
  const StatementsOfDefinition statements = built.registry.statementsOf(built.parm("p"));
  EXPECT_EQ(statements.definition, 2U);
  EXPECT_EQ(shown(statements.base), "3: rangeValid { 0..9 } rangeValid { 20 }");
  EXPECT_EQ(shown(statements.fallback), "8: default { 5 }");
  EXPECT_EQ(shown(statements.validity), Texts{"4: ctrlValid (mode == 1)"});
  EXPECT_EQ(shown(statements.ranges), Texts{"6: rangeValid (mode == 2) { 1..2 }"});
  EXPECT_EQ(shown(statements.defaults),
            (Texts{"8: default (mode == 3) { 4 }", "15: default (mode == 9) { (mode) }"}));
  // By source.
  EXPECT_EQ(shown(statements.translations),
            (Texts{"10: valueChange { \"a\" -> 1 }", "9: valueChange { \"b\" -> 1 }"}));
  EXPECT_EQ(shown(statements.readOnly),
            (Texts{"11: ctrlRO (mode == 4)", "12: ctrlRO (mode == 5)"}));
  EXPECT_EQ(shown(statements.documented),
            (Texts{"13: rangeDoc (mode == 6) { 7 }", "14: rangeDoc { 8 }"}));
}

TEST(StatementsOfDefinition, FollowWhatTheBuilderMakesOfStatements) {
  const BuiltText built(R"(mode rw { }
p ro {
  rangeValid (mode == 1) { 1 }
  rangeValid { 2 }
  rangeValid { (mode) }
  rangeValid (mode == 2) { 3 }
  default (1) { (mode + 1) }
  ctrlRO (7)
  rangeDoc { 4 }
  rangeDoc (mode) { 5 }
  rangeDoc { (mode) }
}
i index {
  rangeValid { 0..1 }
  rangeValid (mode) { 0 }
  ctrlValid (mode != 9)
  ctrlRO (mode)
}
none rw { })");
  const StatementsOfDefinition p = built.registry.statementsOf(built.parm("p"));
  // The set of those without a condition stands where its first run-time item is.
  EXPECT_EQ(shown(p.ranges),
            (Texts{"3: rangeValid (mode == 1) { 1 }", "4: rangeValid { 2 } rangeValid { (mode) }",
                   "6: rangeValid (mode == 2) { 3 }"}));
  EXPECT_EQ(shown(p.base), "4: rangeValid { 2 }");
  EXPECT_EQ(shown(p.defaults), Texts{"7: default (1) { (mode + 1) }"});
  EXPECT_EQ(p.fallback, SourceStatement());
  EXPECT_EQ(shown(p.readOnly), (Texts{"0: ", "8: ctrlRO (7)"}));
  EXPECT_EQ(shown(p.documented),
            (Texts{"10: rangeDoc (mode) { 5 }", "9: rangeDoc { 4 } rangeDoc { (mode) }"}));
  const StatementsOfDefinition i = built.registry.statementsOf(built.index("i"));
  EXPECT_EQ(i.definition, 13U);
  EXPECT_EQ(shown(i.base), "14: rangeValid { 0..1 }");
  EXPECT_EQ(shown(i.ranges), Texts{"15: rangeValid (mode) { 0 }"});
  EXPECT_EQ(shown(i.validity), Texts{"16: ctrlValid (mode != 9)"});
  EXPECT_EQ(built.registry.statementsOf(built.parm("none")).base, SourceStatement());
}

using Lines = std::vector<uint32_t>;

Lines linesIn(const StatementLines::List& places) {
  Lines lines;
  for (const StatementPlace& place : places) lines.push_back(place.line);
  return lines;
}

// Keeps what is collected, all of it.
class CollectingRegistry final : public DefinitionRegistry {
 public:
  [[nodiscard]] const std::string* findConstant(std::string_view /*name*/) const override {
    return nullptr;
  }
  int registerIndex(std::unique_ptr<IndexDef> /*index*/) override { return 0; }
  [[nodiscard]] const IndexDef* findIndex(std::string_view /*name*/) const override {
    return nullptr;
  }
  int registerParm(std::unique_ptr<ParmDef> /*parm*/) override { return 0; }
  void keepParmLines(std::string_view name, const StatementLines& kept) override {
    lines[std::string(name)] = kept;
  }
  int finish(std::string& /*name*/) override { return 0; }

  std::map<std::string, StatementLines> lines;
};

const char* const SETS = R"(mode rw { }
p rw {
  rangeValid { 1 }
  rangeValid (mode == 1) { 2 }
  rangeValid { (mode) }
  rangeValid (2 > 1) { 4 }
  rangeDoc { 5 }
  rangeDoc (mode == 1) { 6 }
  rangeDoc { (mode) }
}
q rw {
  rangeValid { 1 }
  rangeValid { 2 }
  rangeValid (mode) { 3 }
})";

TEST(StatementLines, NameAllThatASetIsMadeOf) {
  DefinitionText text;
  ASSERT_EQ(readDefinitionText(::linesIn(SETS), text), PARSE_DONE);
  CollectingRegistry registry;
  DiagnosticCollector diagnostics;
  ASSERT_EQ(buildDefinitions(diagnostics, text.records, text.lines, false, registry), 0);
  const StatementLines& p = registry.lines.at("p");
  EXPECT_EQ(linesIn(p.inBase), (Lines{3, 6}));
  EXPECT_EQ(linesIn(p.inSet), (Lines{3, 5, 6}));
  EXPECT_EQ(linesIn(p.inDocumentedSet), (Lines{7, 9}));
  const StatementLines& q = registry.lines.at("q");
  EXPECT_EQ(linesIn(q.inBase), (Lines{12, 13}));
  EXPECT_EQ(linesIn(q.inSet), Lines{});
}

}  // namespace
