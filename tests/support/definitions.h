// Test definitions: programs, situations and definitions for the tests, written as text, without
// the grammar of definitions and the builder:
//
//   const ParmDef gain = makeParm({.common = {.name = "gain", .base = {"0..9", "auto"}}});
//   const TextSituation situation(gain.variables(), {});
//
// An expression that is wrong fails the test.
#pragma once

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/number.h"
#include "deflang/expression/program.h"
#include "deflang/expression/variables.h"
#include "deflang/text/expression_grammar.h"
#include "sw/parm/index_def.h"
#include "sw/parm/parm_def.h"
#include "sw/parm/present_index.h"

/// The program of an expression as a definition text has it, without the parentheses around it; its
/// names get slots in `variables`.
inline Program makeProgram(Variables& variables, std::string_view text) {
  const std::string line = "(" + std::string(text) + ")";
  Arena memory;
  TextCursor cursor(linesIn(line), memory);
  Expression expression;
  EXPECT_TRUE(readExpression(cursor, expression)) << text;
  EXPECT_EQ(cursor.rest(), "") << text;
  Program program;
  EXPECT_EQ(Program::compile(expression, variables, program), 0) << text;
  return program;
}

/// The programs of `texts`, in their order; see makeProgram().
inline std::vector<Program> makePrograms(Variables& variables,
                                         const std::vector<std::string>& texts) {
  std::vector<Program> programs;
  programs.reserve(texts.size());
  for (const std::string& text : texts) programs.push_back(makeProgram(variables, text));
  return programs;
}

/// A situation given by the names and value texts of its variables, which it keeps. A name that is
/// used nowhere fails the test.
class TextSituation : public Situation {
 public:
  using Texts = std::map<std::string, std::string>;

  TextSituation(const Variables& variables, Texts texts)
      : Situation(variables.size()), texts_(std::move(texts)) {
    for (const auto& [name, text] : texts_) {
      const std::optional<uint32_t> slot = variables.find(name);
      EXPECT_TRUE(slot) << name << " is used nowhere";
      if (slot) bind(*slot, operandOf(text));
    }
  }
  TextSituation(const TextSituation&) = delete;
  TextSituation& operator=(const TextSituation&) = delete;

 private:
  Texts texts_;
};

/// The indices of an instance of a parameter in a situation that is given by names and value texts.
/// Both have to outlive it. Names that an index does not use are passed over.
class TextIndices final : public PresentIndices {
 public:
  TextIndices(const ParmDef& parm, const TextSituation::Texts& texts)
      : parm_(parm), texts_(texts) {}
  /// The index at `place` (from 0) of the parameter's list; valid until the next call.
  [[nodiscard]] PresentIndex& at(size_t place, const Situation& own) override {
    const IndexDef& index = *parm_.indices()[place];
    Situation situation(index.variables().size());
    for (const auto& [name, text] : texts_) {
      const std::optional<uint32_t> slot = index.variables().find(name);
      if (slot) situation.bind(*slot, operandOf(text));
    }
    for (const IndexDef* other : parm_.indices()) {
      const std::optional<uint32_t> slot = index.variables().find(other->name());
      const Operand& bound = own[*parm_.variables().find(other->name())];
      if (slot && bound.kind != OPERAND_INVALID) situation.bind(*slot, operandOf(bound.text));
    }
    return present_.emplace(index, std::move(situation));
  }

 private:
  const ParmDef& parm_;
  const TextSituation::Texts& texts_;
  std::optional<PresentIndex> present_;
};

/// One range item:
///
///   7                a number
///   0..9             a span
///   auto             a text
///   "7"              the text 7, which is no number
///   (lo)             computed at run time
///   (lo)..(hi + 1)   a span of computed limits
using ItemText = std::string;

/// The text of an item in quotes, without these; nullopt for any other item.
inline std::optional<std::string> quotedText(const ItemText& item) {
  if (!item.starts_with("\"")) return std::nullopt;
  return item.substr(1, item.size() - 2);
}

/// A condition, and the items that count while it is true. One computed limit makes all of them
/// computed.
struct RangeText {
  std::string condition = "1";
  std::vector<ItemText> items = {};
};

/// Whether one of `items` has a limit that is computed at run time.
inline bool isComputed(const std::vector<ItemText>& items) {
  for (const ItemText& item : items) {
    if (item.find('(') != std::string::npos) return true;
  }
  return false;
}

/// The lower and the upper limit of an item; a single value is the lower one, and the upper one is
/// then empty.
inline std::pair<std::string, std::string> limitsOf(const ItemText& item) {
  const size_t dots = item.find("..");
  if (dots == std::string::npos) return {item, {}};
  return {item.substr(0, dots), item.substr(dots + 2)};
}

/// The bounds of items that are not computed.
inline BoundsParm makeBounds(const std::vector<ItemText>& items) {
  BoundsParm bounds;
  for (const ItemText& item : items) {
    const auto [lower, upper] = limitsOf(item);
    if (const std::optional<std::string> text = quotedText(item)) {
      EXPECT_EQ(bounds.strings().addText(*text), 0) << item;
    } else if (upper.empty()) {
      EXPECT_EQ(bounds.addValue(lower), 0) << item;
    } else {
      EXPECT_EQ(bounds.integers().addSpan(*wholeNumber(lower), *wholeNumber(upper)), 0) << item;
    }
  }
  return bounds;
}

/// The program of one limit; a limit that is neither in parentheses nor a number is a text.
inline Program makeLimit(Variables& variables, const std::string& limit) {
  if (limit.starts_with("(")) return makeProgram(variables, limit);
  const std::optional<int32_t> number = wholeNumber(limit);
  return number ? Program::constant(*number) : Program::constant(limit);
}

/// The bounds of `items` as the items of one run-time range, those included that are constant.
inline std::unique_ptr<BoundsExpression> makeComputedBounds(Variables& variables,
                                                            const std::vector<ItemText>& items) {
  auto bounds = std::make_unique<BoundsExpression>();
  for (const ItemText& item : items) {
    if (const std::optional<std::string> text = quotedText(item)) {
      bounds->addItem({Program::constant(*text), std::nullopt, true});
      continue;
    }
    const auto [lower, upper] = limitsOf(item);
    BoundsExpression::Item computed{makeLimit(variables, lower), std::nullopt, false};
    if (!upper.empty()) computed.upper = makeLimit(variables, upper);
    bounds->addItem(std::move(computed));
  }
  return bounds;
}

/// The conditional bounds of `ranges`, in their order.
inline std::vector<ConditionalBounds> makeConditionalBounds(Variables& variables,
                                                            const std::vector<RangeText>& ranges) {
  std::vector<ConditionalBounds> list;
  for (const RangeText& range : ranges) {
    ConditionalBounds& bounds = list.emplace_back();
    bounds.condition = makeProgram(variables, range.condition);
    if (isComputed(range.items)) {
      bounds.bounds = makeComputedBounds(variables, range.items);
    } else {
      bounds.bounds = std::make_unique<BoundsParm>(makeBounds(range.items));
    }
  }
  return list;
}

/// An index definition as text: conditions are expressions.
struct IndexText {
  std::string name = "channel";
  std::vector<std::string> validIf = {};
  std::vector<ItemText> base = {};
  std::vector<RangeText> ranges = {};
  std::map<std::string, std::string> translations = {};  ///< source to target
};

/// What an index and a parameter have in common, made of `text`.
inline DefinitionParts makeParts(const IndexText& text) {
  DefinitionParts parts;
  parts.name = text.name;
  parts.validityConditions = makePrograms(parts.variables, text.validIf);
  parts.baseBounds = makeBounds(text.base);
  parts.conditionalBounds = makeConditionalBounds(parts.variables, text.ranges);
  parts.translations = text.translations;
  return parts;
}

/// The index definition of `text`.
inline IndexDef makeIndex(const IndexText& text) { return IndexDef(makeParts(text)); }

/// A conditional default: two expressions.
struct DefaultText {
  std::string condition;
  std::string value;
};

/// A constraint rule: three expressions.
struct RuleText {
  std::string condition;
  std::string test;
  std::string correction;
};

/// A parameter definition as text: what it has in common with an index, and the rest.
struct ParmText {
  IndexText common = {.name = "gain"};
  std::vector<const IndexDef*> indices = {};
  AccessMode mode = MODE_NORMAL;
  std::vector<std::string> readOnlyIf = {};
  std::vector<RuleText> rules = {};
  std::vector<DefaultText> defaults = {};
  std::string fallback = {};
  std::vector<RangeText> documented = {};
};

/// The parameter definition of `text`, whose indices have to outlive it.
inline ParmDef makeParm(const ParmText& text) {
  DefinitionParts parts = makeParts(text.common);
  Variables& variables = parts.variables;
  ParmParts own;
  own.indices = text.indices;
  own.mode = text.mode;
  own.fallbackDefault = text.fallback;
  for (const DefaultText& d : text.defaults) {
    own.defaults.push_back({makeProgram(variables, d.condition), makeProgram(variables, d.value)});
  }
  for (const RuleText& rule : text.rules) {
    own.constraintRules.push_back({makeProgram(variables, rule.condition),
                                   makeProgram(variables, rule.test),
                                   makeProgram(variables, rule.correction)});
  }
  own.readOnlyConditions = makePrograms(variables, text.readOnlyIf);
  own.documentedRanges = makeConditionalBounds(variables, text.documented);
  return ParmDef(std::move(parts), std::move(own));
}
