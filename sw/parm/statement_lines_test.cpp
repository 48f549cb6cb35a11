#include "sw/parm/statement_lines.h"

#include <gtest/gtest.h>

#include "deflang/text/definition_grammar.h"
#include "sw/parm/build/builder.h"
#include "tests/support/build.h"

namespace {

using Lines = std::vector<uint32_t>;

Lines linesIn(std::span<const uint32_t> lines) { return {lines.begin(), lines.end()}; }

TEST(StatementLines, AreThoseOfTheKeywords) {
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
  const LinesOfDefinition lines(built.parm("p"), built.registry.lines.at("p"));
  EXPECT_EQ(lines.definition, 2U);
  EXPECT_EQ(lines.base, 3U);
  EXPECT_EQ(lines.fallback, 8U);
  EXPECT_EQ(linesIn(lines.validity), Lines{4});
  EXPECT_EQ(linesIn(lines.ranges), Lines{6});
  EXPECT_EQ(linesIn(lines.defaults), (Lines{8, 15}));
  EXPECT_EQ(linesIn(lines.translations), (Lines{10, 9}));  // by source
  EXPECT_EQ(linesIn(lines.readOnly), (Lines{11, 12}));
  EXPECT_EQ(linesIn(lines.documented), (Lines{13, 14}));
}

TEST(StatementLines, FollowWhatTheBuilderMakesOfStatements) {
  const BuiltText built(R"(mode rw { }
p ro {
  rangeValid (mode == 1) { 1 }
  rangeValid { 2 }
  rangeValid { (mode) }
  rangeValid (mode == 2) { 3 }
  default (1) { (mode + 1) }
  ctrlRO (7)
}
i index {
  rangeValid { 0..1 }
  rangeValid (mode) { 0 }
  ctrlValid (mode != 9)
  ctrlRO (mode)
})");
  const LinesOfDefinition p(built.parm("p"), built.registry.lines.at("p"));
  // The set of those without a condition stands where its first run-time item is.
  EXPECT_EQ(linesIn(p.ranges), (Lines{3, 5, 6}));
  EXPECT_EQ(p.base, 4U);
  EXPECT_EQ(linesIn(p.defaults), Lines{7});
  EXPECT_EQ(p.fallback, 0U);
  EXPECT_EQ(linesIn(p.readOnly), (Lines{2, 8}));
  const LinesOfDefinition i(built.index("i"), built.registry.lines.at("i"));
  EXPECT_EQ(i.definition, 10U);
  EXPECT_EQ(i.base, 11U);
  EXPECT_EQ(linesIn(i.ranges), Lines{12});
  EXPECT_EQ(linesIn(i.validity), Lines{13});
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
