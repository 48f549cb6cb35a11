// Compiled text: the statements of every definition with their expressions ready for evaluation.
#pragma once

#include <deque>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "check/text/checked_text.h"
#include "deflang/expression/program.h"

/// An expression of the text, by the engine's compiler.
struct CompiledExpression {
  Expression expression = {};
  Program program;
  Variables variables;
  std::vector<VariableSource> sources = {};  ///< by slot of `variables`
};

/// An item of a range, or the value of a default: a quoted text, or expressions.
struct CompiledItem {
  Position at;
  std::optional<std::string> text;
  std::optional<CompiledExpression> lower;
  std::optional<CompiledExpression> upper;  ///< of a span
};

/// One statement of a definition.
struct CompiledStatement {
  const StatementLayout* layout = nullptr;
  /// Null where there is none, or where it is `()`.
  std::optional<CompiledExpression> condition = {};
  std::vector<CompiledItem> items = {};  ///< of a range; of a default the one value
};

/// One name of the text.
struct Subject {
  const ParameterRecord* record = nullptr;
  ParmEntry* parm = nullptr;    ///< null for an index
  IndexEntry* index = nullptr;  ///< null for a parameter
  Position at = {};             ///< of its name
  std::vector<CompiledStatement> rangeValid = {};
  std::vector<CompiledStatement> rangeDoc = {};
  std::vector<CompiledStatement> ctrlRO = {};
  std::vector<CompiledStatement> ctrlValid = {};
  std::vector<CompiledStatement> defaults = {};
  /// What its value follows: what its ranges read, and whether it is there. What locks it, or is
  /// read by its defaults, moves nothing.
  VariableSources movers = {};

  [[nodiscard]] const IndexDef& definition() const {
    return parm != nullptr ? static_cast<const IndexDef&>(parm->parm) : *index->index;
  }
  [[nodiscard]] const std::string& name() const { return definition().name(); }
};

/// The place of a definition's name.
inline TextPlace placeOfName(const Subject& subject) {
  return {subject.at.line, subject.at.column, static_cast<uint32_t>(subject.name().size())};
}

/// Calls `visit` with each expression of an item, a statement, or all statements of a subject.
template <typename Visit>
void forEachExpression(const CompiledItem& item, const Visit& visit) {
  if (item.lower) visit(*item.lower);
  if (item.upper) visit(*item.upper);
}
template <typename Visit>
void forEachExpression(const CompiledStatement& statement, const Visit& visit) {
  if (statement.condition) visit(*statement.condition);
  for (const CompiledItem& item : statement.items) forEachExpression(item, visit);
}
template <typename Visit>
void forEachExpression(const Subject& subject, const Visit& visit) {
  for (const auto* statements : {&subject.rangeValid, &subject.rangeDoc, &subject.ctrlRO,
                                 &subject.ctrlValid, &subject.defaults}) {
    for (const CompiledStatement& statement : *statements) forEachExpression(statement, visit);
  }
}

/// What an expression without variables gives; nullopt where it has some, or gives nothing.
std::optional<std::string> constantText(const CompiledExpression& expression);
/// Where an item begins.
inline TextPlace placeOf(const CompiledItem& item) { return {item.at.line, item.at.column, 0}; }

/// Every definition of one variant that the engine has built. The text and its variant have to
/// outlive it.
class CompiledText {
 public:
  explicit CompiledText(const CheckedText& checked);

  [[nodiscard]] const CheckedText& checked() const { return checked_; }
  [[nodiscard]] Database& database() const { return checked_.database(); }
  /// In the order of the text.
  [[nodiscard]] const std::deque<Subject>& subjects() const { return subjects_; }
  /// The subject of a base name, or null.
  [[nodiscard]] const Subject* find(std::string_view name) const;
  /// Whether all definitions of the text are among them.
  [[nodiscard]] bool isWhole() const { return isWhole_; }
  /// Whether a definition that is not among them names the one of `name`.
  [[nodiscard]] bool isNamedByOthers(std::string_view name) const {
    return namedByUnbuilt_.contains(name);
  }
  /// Compiles an expression of the text, which the engine has accepted.
  [[nodiscard]] CompiledExpression compile(const Expression& expression) const;

 private:
  using StatementsOf = std::function<std::vector<const StatementLayout*>(std::string_view keyword)>;

  void addSubject(const DefinitionLayout& definition, const StatementsOf& statementsOf);
  void noteUnbuilt(const ParameterRecord& record);
  [[nodiscard]] CompiledItem compileItem(const RangeItem& item) const;
  [[nodiscard]] CompiledStatement compileCondition(const Expression& condition,
                                                   const StatementLayout* layout) const;

  const CheckedText& checked_;
  std::deque<Subject> subjects_;
  std::unordered_map<std::string_view, const Subject*> byName_;
  std::set<std::string_view> namedByUnbuilt_;
  bool isWhole_ = true;
};
