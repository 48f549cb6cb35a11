#include "sw/parm/build/builder.h"

#include <gtest/gtest.h>

#include <sstream>

#include "tests/support/build.h"

namespace {

using Names = std::vector<std::string>;

TEST(Builder, RegistersIndicesThenParametersInNameOrder) {
  const BuiltText built(
      "b rw { } z index { } a ro { }\n"
      "B wo { } y index { } c rostrict { }\n");
  EXPECT_EQ(built.result, 0);
  EXPECT_EQ(built.registry.registered, (Names{"index y", "index z", "parameter B", "parameter a",
                                              "parameter b", "parameter c", "finish"}));
}

TEST(Builder, BuildsNothingFromAnEmptyText) {
  const BuiltText built("");
  EXPECT_EQ(built.result, 0);
  EXPECT_EQ(built.diagnostics, "");
  EXPECT_EQ(built.registry.registered, Names{"finish"});
}

TEST(Builder, BuildsWhatTheEndOfTheTextLeavesOpen) {
  const BuiltText built("a rw { rangeValid { 1..2 }\n");
  EXPECT_EQ(built.result, 0);
  EXPECT_EQ(itemsText(built.parm("a").baseBounds()), "1..2");
  const BuiltText named("a rw { }\nb\n");
  EXPECT_EQ(named.result, 0);
  EXPECT_EQ(named.diagnostics, "");
  EXPECT_EQ(named.registry.registered, (Names{"parameter a", "finish"}));
}

TEST(Builder, SaysNothingAboutAValidText) {
  expectReports(
      {{"# Two channels; the gain reaches as far as the mode allows.\n"
        "mode rw {\n"
        "  rangeValid { \"film\", \"video\" }\n"
        "  default { \"video\" }\n"
        "}\n"
        "channel index { rangeValid { 1..2 } }\n"
        "gain rw {\n"
        "  index { channel }\n"
        "  rangeValid (mode == \"film\") { 0..100 }\n"
        "  rangeValid (mode == \"video\") { 0..(width / 2) }\n"
        "  rangeDoc (MODEL == \"pro\") { 0..255 }\n"
        "  ctrlRO (locked == 1 || channel == 2)\n"
        "  ctrlValid (MODEL == \"pro\")\n"
        "  valueChange { \"unity\" -> 64 }\n"
        "  default (gain[2] > 1) { 32 }\n"
        "  default { 64 }\n"
        "}\n"
        "width ro { rangeValid { 0..(vidStd::mode::spal) } }\n"
        "locked rw { rangeValid { 0..1 } }\n"
        "alarm rostrict { rangeValid { 0..1 } }\n"
        "take wo { }\n",
        {{"MODEL", "pro"}},
        0,
        ""}});
}

// Each statement of the text has a fault of its own.
TEST(Builder, ReportsEverythingInItsOrder) {
  const BuiltText built(
      "z rw {\n"
      "  valueChange { 1 -> 2 } valueChange { 1 -> 3 }\n"
      "  default { 1 } default { (nobody) }\n"
      "  ctrlValid (1 / 0)\n"
      "  ctrlRO (0) ctrlRO (1)\n"
      "  rangeDoc { 2..1 }\n"
      "  rangeValid { \"\" }\n"
      "  index { gain } index { gain }\n"
      "}\n"
      "i index { index { gain } rangeValid (nothing) { 2..1 } }\n"
      "j index { rangeValid (0) { } }\n"
      "gain rw { ctrlRO (1 2) }\n");
  EXPECT_EQ(built.result, -1);
  std::string summary;
  size_t start = 0;
  while (start < built.diagnostics.size()) {
    std::string lines[4];
    for (std::string& line : lines) {
      const size_t end = built.diagnostics.find('\n', start);
      line = built.diagnostics.substr(start, end - start);
      start = end + 1;
    }
    summary += lines[0] + ": " + lines[1] + "\n";
  }
  EXPECT_EQ(summary,
            "Warning on line 10: An index has defined indices.\n"
            "Error on line 10: Invalid range specifier. Parameter is \"i\"\n"
            "Warning on line 11: Conditional evaluates to 0.\n"
            "Error on line 10: Undefined variable. nothing\n"
            "Error on line 12: Invalid expression.\n"
            "Error on line 8: Invalid index.\n"
            "Warning on line 8: Mulitple index definitions. Only first index definition will be "
            "used.\n"
            "Error on line 7: Invalid range specifier. Parameter is \"z\"\n"
            "Error on line 6: Invalid range specifier. Parameter is \"z\"\n"
            "Error on line 5: Conflicting conditionals.\n"
            "Error on line 4: Invalid expression.\n"
            "Error on line 3: Multiple instances of conditional evaluating to non-0.\n"
            "Error on line 2: A value has multiple translations.\n"
            "Error on line 3: Undefined variable. nobody\n");
  EXPECT_EQ(built.errors, "Internal error: Could not find index \"gain\"\n");
  EXPECT_EQ(built.registry.registered,
            (Names{"index i", "index j", "parameter gain", "parameter z", "finish"}));
}

// A name that the registry already holds stays what it is, without a word.
TEST(Builder, PassesOverTakenNames) {
  const DefinitionText text = parseText("i index { rangeValid { 1 } } p rw { rangeValid { 1 } }\n");
  const DefinitionText again =
      parseText("i index { rangeValid { 2 } } p rw { rangeValid { 2 } }\n");
  TestRegistry registry;
  DiagnosticCollector diagnostics;
  EXPECT_EQ(buildDefinitions(diagnostics, text.records, text.lines, false, registry), 0);
  EXPECT_EQ(buildDefinitions(diagnostics, again.records, again.lines, false, registry), 0);
  EXPECT_TRUE(diagnostics.diagnostics().empty());
  EXPECT_EQ(itemsText(registry.findIndex("i")->baseBounds()), "1");
  EXPECT_EQ(itemsText(registry.findParm("p")->baseBounds()), "1");
}

struct FinishCase {
  std::string_view text;
  int finishResult;
  int result;
  Names lines;
};

TEST(Builder, HandsOnTheResultOfFinishing) {
  const FinishCase cases[] = {
      {"p rw { }\n", 0, 0, {}},
      {"p rw { }\n", 1, 1, {"Error creating parameter definitions: gain"}},
      {"p rw { }\n", 3, 3, {"Error creating parameter definitions: gain"}},
      {"p rw { ctrlRO () }\n", 3, -1, {"Error creating parameter definitions: gain"}},
      {"p rw { rangeValid (0) { } }\n", 1, -1, {"Error creating parameter definitions: gain"}},
      {"p rw { default (0) { 1 } }\n", 1, 1, {"Error creating parameter definitions: gain"}},
  };
  for (const FinishCase& c : cases) {
    SCOPED_TRACE(c.text);
    const DefinitionText text = parseText(c.text);
    TestRegistry registry;
    registry.finishResult = c.finishResult;
    registry.finishName = "gain";
    DiagnosticCollector diagnostics;
    EXPECT_EQ(buildDefinitions(diagnostics, text.records, text.lines, false, registry), c.result);
    EXPECT_EQ(diagnostics.textLines(), c.lines);
  }
}

TEST(Builder, OnlyChecksWhereItIsToldTo) {
  const DefinitionText text = parseText("i index { } p rw { index { i } ctrlRO (X) }\n");
  TestRegistry registry(TestRegistry::Constants{{"X", "1"}});
  registry.finishResult = 3;
  DiagnosticCollector diagnostics;
  EXPECT_EQ(buildDefinitions(diagnostics, text.records, text.lines, true, registry), 0);
  EXPECT_TRUE(diagnostics.diagnostics().empty());
  EXPECT_TRUE(registry.registered.empty());
}

// Texts whose size would show any step that walks over what came before.
std::string manyDefinitions(size_t count) {
  std::ostringstream text;
  text << "i index { rangeValid { 1..4 } }\n";
  for (size_t n = 0; n < count; ++n) {
    text << "p" << n << " rw { index { i } rangeValid { 0..(p" << n
         << "[1] + i) } default { 1 } }\n";
  }
  return text.str();
}

std::string manyNames(size_t count) {
  std::ostringstream text;
  text << "p rw { ctrlRO (p\n";
  for (size_t n = 0; n < count; ++n) text << " + p" << n << "[1]\n";
  text << ") }\n";
  return text.str();
}

std::string manyStatements(size_t count) {
  std::ostringstream text;
  text << "p rw {\n";
  for (size_t n = 0; n < count; ++n) {
    text << "rangeValid { " << 2 * (count - n) << ", (p + " << n << ") } default (p == " << n
         << ") { 1 } valueChange { " << n << " -> \"a\" }\n";
  }
  text << "}\n";
  return text.str();
}

TEST(Builder, TakesLargeTexts) {
  constexpr size_t COUNT = 20000;
  EXPECT_EQ(BuiltText(manyDefinitions(COUNT)).result, 0);
  EXPECT_EQ(BuiltText(manyNames(COUNT)).result, -1);  // none of the names is defined
  const BuiltText built(manyStatements(COUNT));
  EXPECT_EQ(built.result, 0);
  EXPECT_EQ(built.parm("p").conditionalBounds()[0].bounds->count(), 2 * COUNT);
}

}  // namespace
