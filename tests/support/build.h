// Built texts for tests: a definition text made into definitions, with everything it printed.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "deflang/text/definition_grammar.h"
#include "sw/parm/build/builder.h"
#include "sw/parm/index_def.h"
#include "sw/parm/parm_def.h"
#include "tests/support/print.h"
#include "tests/support/registry.h"

/// The records of `text`. A text that cannot be read fails the test.
inline DefinitionText parseText(std::string_view text) {
  DefinitionText parsed;
  EXPECT_EQ(readDefinitionText(linesIn(text), parsed), PARSE_DONE);
  return parsed;
}

/// What `diagnostics` prints.
inline std::string printed(const DiagnosticCollector& diagnostics) {
  return printed([&diagnostics](FILE* out) { diagnostics.print(out); });
}

/// A text that has been built, with everything that the build said:
///
///   const BuiltText built("p rw { rangeValid { 1..2 } }");
///   EXPECT_EQ(built.diagnostics, "");
///   EXPECT_EQ(itemsText(built.parm("p").baseBounds()), "1..2");
struct BuiltText {
  /// Reads and builds `text` with the command-line constants `constants`.
  explicit BuiltText(std::string_view text, const TestRegistry::Constants& constants = {},
                     bool checkOnly = false)
      : parsed(parseText(text)), registry(constants) {
    DiagnosticCollector collected;
    result = buildDefinitions(collected, parsed.records, parsed.lines, checkOnly, registry);
    for (const std::string& line : collected.textLines()) errors += line + "\n";
    diagnostics = printed(collected).substr(errors.size());
  }

  /// The definition of a parameter. A name that is none raises std::runtime_error.
  [[nodiscard]] const ParmDef& parm(std::string_view name) const {
    const ParmDef* const found = registry.findParm(name);
    if (found == nullptr) throw std::runtime_error("no parameter " + std::string(name));
    return *found;
  }
  /// The definition of an index. A name that is none raises std::runtime_error.
  [[nodiscard]] const IndexDef& index(std::string_view name) const {
    const IndexDef* const found = registry.findIndex(name);
    if (found == nullptr) throw std::runtime_error("no index " + std::string(name));
    return *found;
  }

  DefinitionText parsed;
  TestRegistry registry;
  int result = 0;           ///< of buildDefinitions()
  std::string errors;       ///< the lines about the text as a whole
  std::string diagnostics;  ///< the rest, as it is printed
};

/// A text, the constants that it is built with, and what the build is to say: its result, the
/// diagnostics and, of a build for good, standard error.
struct ReportCase {
  std::string_view text;
  TestRegistry::Constants constants;
  int result;
  std::string_view diagnostics;
  std::string_view errors = {};
};

/// Builds each text for good and expects what its case says. Then builds each for its diagnostics
/// alone and expects the same of it, but for standard error and registered definitions: there are
/// none.
inline void expectReports(const std::vector<ReportCase>& cases) {
  for (const ReportCase& c : cases) {
    SCOPED_TRACE(c.text);
    const BuiltText built(c.text, c.constants);
    EXPECT_EQ(built.result, c.result);
    EXPECT_EQ(built.diagnostics, c.diagnostics);
    EXPECT_EQ(built.errors, c.errors);
    const BuiltText checked(c.text, c.constants, true);
    EXPECT_EQ(checked.result, c.result);
    EXPECT_EQ(checked.diagnostics, c.diagnostics);
    EXPECT_EQ(checked.errors, "");
    EXPECT_TRUE(checked.registry.registered.empty());
  }
}

/// The value texts of a situation, by name.
using Texts = std::map<std::string, std::string>;

/// The situation of a definition in which its variables hold `texts`, which outlive it. Names that
/// the definition does not use are passed over.
inline Situation situationOf(const IndexDef& definition, const Texts& texts) {
  Situation situation(definition.variables().size());
  for (const auto& [name, text] : texts) {
    if (const auto slot = definition.variables().find(name)) situation.bind(*slot, operandOf(text));
  }
  return situation;
}

/// Bounds as the items of a range statement: spans, then texts in quotes, of which the correction
/// is the first: `1..2, 7, "off", "auto"`.
inline std::string itemsText(const BoundsParm& bounds) {
  std::string text;
  const auto add = [&text](const std::string& item) { text += (text.empty() ? "" : ", ") + item; };
  for (const auto& [low, high] : bounds.integers().spans()) {
    add(low == high ? std::to_string(low) : std::to_string(low) + ".." + std::to_string(high));
  }
  const std::string& correction = bounds.strings().correction();
  if (!correction.empty()) add('"' + correction + '"');
  for (const std::string& allowed : bounds.strings().texts()) {
    if (allowed != correction) add('"' + allowed + '"');
  }
  return text;
}

/// What conditional bounds are in a situation: their items; "off" while they do not apply; the
/// negative code of BoundsExpression::evaluate() while a run-time item has no value.
inline std::string itemsText(const ConditionalBounds& bounds, const Situation& situation) {
  if (!bounds.condition.isTrue(situation)) return "off";
  if (bounds.computed == nullptr) return itemsText(dynamic_cast<BoundsParm&>(*bounds.bounds));
  BoundsParm present;
  const int code = bounds.computed->evaluate(present, situation);
  return code == 0 ? itemsText(present) : std::to_string(code);
}

/// The conditional bounds of a definition in a situation, in their order, each as itemsText() gives
/// it. Run-time ranges begin with "= ".
inline std::vector<std::string> conditionalTexts(const IndexDef& definition, const Texts& texts) {
  const Situation situation = situationOf(definition, texts);
  std::vector<std::string> list;
  for (const ConditionalBounds& bounds : definition.conditionalBounds()) {
    list.push_back((bounds.computed == nullptr ? "" : "= ") + itemsText(bounds, situation));
  }
  return list;
}

/// The items of the range that a range query finds in a situation, or its negative code.
inline std::string rangeText(const ParmDef& parm, const Texts& texts) {
  BoundsParm range;
  const int code = parm.range(range, situationOf(parm, texts));
  return code == 0 ? itemsText(range) : std::to_string(code);
}
