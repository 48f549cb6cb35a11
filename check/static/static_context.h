// Static context: what all checks that need no proof share.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "check/static/explained_places.h"
#include "check/text/checked_text.h"
#include "check/text/findings.h"
#include "check/text/wording.h"

/// A name with all its definitions, as the engine takes them together.
struct NamedDefinition {
  const ParameterRecord* record = nullptr;
  TextPlace name;                          ///< where it first is
  std::vector<TextPlace> laterNames = {};  ///< where it is defined again
  std::vector<const StatementLayout*> statements = {};

  /// The keyword of the statement that is the one at `place`, from 0, among those of `keyword`.
  [[nodiscard]] TextPlace keyword(std::string_view keyword, size_t place) const;
  /// Which of its definitions a place in one of them belongs to, from 0.
  [[nodiscard]] size_t partOf(TextPlace place) const;
  /// Whether it is an index.
  [[nodiscard]] bool isIndex() const { return record->access == ACCESS_INDEX; }
};

/// What an expression is for.
enum ExpressionUse {
  USE_RANGE_CONDITION,
  USE_RANGE_VALUE,  ///< an item of one value
  USE_RANGE_END,    ///< the lower or upper end of an item
  USE_DOC_CONDITION,
  USE_DOC_VALUE,
  USE_DOC_END,
  USE_CTRL_RO,
  USE_CTRL_VALID,
  USE_DEFAULT_CONDITION,
  USE_DEFAULT_VALUE,
};

/// Calls `visit` with every expression of `record` that has tokens, and what it is for, by kind of
/// statement and in the order of the text. A bare number is an expression, too.
void forEachExpression(const ParameterRecord& record,
                       const std::function<void(ExpressionUse, const Expression&)>& visit);

/// What a name in an expression refers to.
struct Reference {
  const Token* token = nullptr;
  std::string_view name;                   ///< as it is written, without "vidStd::" and figure
  std::string_view base;                   ///< `name` without index values
  const NamedDefinition* named = nullptr;  ///< null where the text defines no such name
  const vidFigure_t* figure = nullptr;     ///< null where the name itself is meant
  [[nodiscard]] bool isQualified() const { return base.size() < name.size(); }
};

/// One text in one variant, by definitions. It refers to the text, which has to outlive it.
class StaticContext {
 public:
  StaticContext(const CheckedText& checked, Findings& findings, ExplainedPlaces& explained);
  StaticContext(const StaticContext&) = delete;
  StaticContext& operator=(const StaticContext&) = delete;

  [[nodiscard]] const CheckedText& checked() const { return checked_; }
  [[nodiscard]] const SourceText& source() const { return checked_.source; }
  /// All names that are defined, in the order of the text. Those that the end of the text leaves
  /// without an access word are none.
  [[nodiscard]] const std::vector<NamedDefinition>& definitions() const { return definitions_; }
  /// The definition of a base name, or null.
  [[nodiscard]] const NamedDefinition* find(std::string_view base) const;
  /// The engine's definition, or null where it has not built one.
  [[nodiscard]] const IndexDef* built(const NamedDefinition& definition) const;
  /// Whether all of `list` are indices that the text defines.
  [[nodiscard]] bool areIndices(IndexStatement list) const;
  /// What a variable refers to.
  [[nodiscard]] Reference referenceOf(const Token& variable) const;
  /// The value of an expression that the constants of the variant decide, as the engine decides it
  /// when it reads the text; a condition may be decided by some of its names. No value for any
  /// other expression.
  [[nodiscard]] std::optional<Value> decidedValue(const Expression& expression) const;
  [[nodiscard]] std::optional<Value> decidedCondition(const Expression& condition) const;

  /// Adds a finding, of a code in finding_codes.h.
  void add(Finding finding) { findings_.add(std::move(finding)); }
  /// What was found before and so far.
  [[nodiscard]] Findings& findings() { return findings_; }
  /// Whether a finding explains a part of the ranges of a definition, so that what is wrong with
  /// them may only follow.
  [[nodiscard]] bool hasExplainedRange(const NamedDefinition& definition) const;
  /// The tokens that the findings explain.
  [[nodiscard]] ExplainedPlaces& explained() { return explained_; }

 private:
  [[nodiscard]] std::optional<Value> decided(const Expression& expression, bool isCondition) const;

  const CheckedText& checked_;
  Findings& findings_;
  ExplainedPlaces& explained_;
  std::vector<NamedDefinition> definitions_;
  std::unordered_map<std::string_view, size_t> places_;  // by name
};

/// The first list of indices of `record`, which is the one that counts.
IndexStatement indicesOf(const ParameterRecord& record);
