#include "check/static/static_context.h"

#include <algorithm>
#include <utility>

#include "deflang/expression/program.h"
#include "deflang/expression/vid_std_name.h"
#include "sw/parm/parm_name.h"

namespace {

using Visit = std::function<void(ExpressionUse, const Expression&)>;

void visitUnlessEmpty(ExpressionUse use, const Expression& expression, const Visit& visit) {
  if (!expression.empty()) visit(use, expression);
}

void visitRange(const RangeStatement& range, ExpressionUse condition, ExpressionUse value,
                ExpressionUse end, const Visit& visit) {
  visitUnlessEmpty(condition, range.condition, visit);
  for (const RangeItem& item : range.items) {
    visitUnlessEmpty(item.upper ? end : value, item.lower, visit);
    if (item.upper) visitUnlessEmpty(end, *item.upper, visit);
  }
}

}  // namespace

TextPlace NamedDefinition::keyword(std::string_view keyword, size_t place) const {
  for (const StatementLayout* statement : statements) {
    if (statement->keyword != keyword || place-- > 0) continue;
    const Position at = statement->extent.from;
    return {at.line, at.column, static_cast<uint32_t>(keyword.size())};
  }
  return name;
}

void forEachExpression(const ParameterRecord& record, const Visit& visit) {
  for (const RangeStatement& range : record.rangeValid) {
    visitRange(range, USE_RANGE_CONDITION, USE_RANGE_VALUE, USE_RANGE_END, visit);
  }
  for (const RangeStatement& range : record.rangeDoc) {
    visitRange(range, USE_DOC_CONDITION, USE_DOC_VALUE, USE_DOC_END, visit);
  }
  for (const Expression& condition : record.ctrlRO) visitUnlessEmpty(USE_CTRL_RO, condition, visit);
  for (const Expression& condition : record.ctrlValid) {
    visitUnlessEmpty(USE_CTRL_VALID, condition, visit);
  }
  for (const DefaultStatement& statement : record.defaults) {
    visitUnlessEmpty(USE_DEFAULT_CONDITION, statement.condition, visit);
    visitUnlessEmpty(USE_DEFAULT_VALUE, statement.value, visit);
  }
}

size_t NamedDefinition::partOf(TextPlace place) const {
  const auto behind = std::ranges::upper_bound(laterNames, place);
  return static_cast<size_t>(behind - laterNames.begin());
}

StaticContext::StaticContext(const CheckedText& checked, Findings& findings,
                             ExplainedPlaces& explained)
    : checked_(checked), findings_(findings), explained_(explained) {
  for (const DefinitionLayout& layout : checked.text.layout.definitions) {
    const ParameterRecord& record = *layout.record;
    if (record.access == ACCESS_NONE) continue;
    const auto [place, isNew] = places_.emplace(record.name, definitions_.size());
    const auto length = static_cast<uint32_t>(record.name.size());
    const TextPlace name = {layout.name.line, layout.name.column, length};
    if (isNew) definitions_.push_back({&record, name});
    NamedDefinition& definition = definitions_[place->second];
    if (!isNew) definition.laterNames.push_back(name);
    for (const StatementLayout& statement : layout.statements) {
      definition.statements.push_back(&statement);
    }
  }
}

const NamedDefinition* StaticContext::find(std::string_view base) const {
  const auto found = places_.find(base);
  return found == places_.end() ? nullptr : &definitions_[found->second];
}

const IndexDef* StaticContext::built(const NamedDefinition& definition) const {
  const std::string_view name = definition.record->name;
  if (definition.isIndex()) return checked_.database().findIndex(name);
  const ParmEntry* const entry = checked_.database().findParm(name);
  return entry == nullptr ? nullptr : &entry->parm;
}

bool StaticContext::areIndices(IndexStatement list) const {
  return std::ranges::all_of(list, [&](const IndexName& index) {
    const NamedDefinition* const named = find(index.name);
    return named != nullptr && named->isIndex();
  });
}

bool StaticContext::hasExplainedRange(const NamedDefinition& definition) const {
  bool isExplained = false;
  forEachExpression(*definition.record, [&](ExpressionUse use, const Expression& expression) {
    const bool isItem = use == USE_RANGE_VALUE || use == USE_RANGE_END || use == USE_DOC_VALUE ||
                        use == USE_DOC_END;
    isExplained = isExplained || (isItem && explained_.explains(expression));
  });
  return isExplained;
}

Reference StaticContext::referenceOf(const Token& variable) const {
  const std::optional<VidStdName> figure = splitVidStdName(variable.text);
  const std::string_view name = figure ? figure->parameter : variable.text;
  const std::string_view base = baseName(name);
  return {&variable, name, base, find(base), figure ? figure->figure : nullptr};
}

std::optional<Value> StaticContext::decidedValue(const Expression& expression) const {
  return decided(expression, false);
}

std::optional<Value> StaticContext::decidedCondition(const Expression& condition) const {
  return decided(condition, true);
}

std::optional<Value> StaticContext::decided(const Expression& expression, bool isCondition) const {
  Variables variables;
  Program program;
  if (Program::compile(expression, variables, program) != 0) return std::nullopt;
  Situation situation(variables.size());
  bool isOpen = false;
  for (uint32_t slot = 0; slot < variables.size(); ++slot) {
    const std::string_view name = variables[slot];
    const bool isConstant = find(baseName(name)) == nullptr && !splitVidStdName(name);
    const std::string* const value = isConstant ? checked_.database().findConstant(name) : nullptr;
    if (value != nullptr) situation.bind(slot, operandOf(*value));
    isOpen = isOpen || value == nullptr;
  }
  if (isOpen && !isCondition) return std::nullopt;
  Value value = program.evaluate(situation);
  return value.valid() ? std::optional(std::move(value)) : std::nullopt;
}

IndexStatement indicesOf(const ParameterRecord& record) {
  if (record.indices.empty()) return {};
  return record.indices.front();
}
