#include "coverage/text_coverage.h"

#include <algorithm>

#include "deflang/text/definition_grammar.h"
#include "deflang/text/text_cursor.h"

double CoverageTotals::percent() const {
  const size_t all = statements.all + outcomes.all + definitions.all;
  const size_t reached = statements.reached + outcomes.reached + definitions.reached;
  return all == 0 ? 100.0 : 100.0 * static_cast<double>(reached) / static_cast<double>(all);
}

bool CoverageTotals::isFull() const {
  return statements.reached == statements.all && outcomes.reached == outcomes.all &&
         definitions.reached == definitions.all;
}

TextCoverage::TextCoverage(std::string_view text) {
  TextCursor cursor(piecesIn(text), text_.records.arena());
  // What is wrong with the text, whoever makes a device of it is told.
  static_cast<void>(readDefinitions(cursor, text_.records));
  std::vector<ParameterRecord*> records;
  for (const ParameterRecord* record : text_.records.inNameOrder()) {
    if (record->access != ACCESS_NONE) records.push_back(text_.records.find(record->name));
  }
  std::ranges::stable_sort(records, {}, &ParameterRecord::line);
  for (ParameterRecord* record : records) addDefinition(*record);
}

template <typename List, typename HasCondition>
void TextCoverage::addStatements(std::string_view keyword, List& list,
                                 const HasCondition& hasCondition) {
  size_t place = 0;
  for (auto& statement : list) {
    statements_.push_back({.definition = definitions_.size() - 1,
                           .keyword = keyword,
                           .place = place++,
                           .line = statement.place.line,
                           .hasCondition = hasCondition(statement)});
    statement.place.line = static_cast<uint32_t>(statements_.size());
  }
}

void TextCoverage::addDefinition(ParameterRecord& record) {
  const auto never = [](const auto& /*statement*/) { return false; };
  const auto always = [](const auto& /*statement*/) { return true; };
  const auto where = [](const auto& statement) { return !statement.condition.empty(); };
  definitions_.push_back({std::string(record.name), record.line});
  record.line = 0;
  addStatements("index", record.indices, never);
  addStatements("rangeValid", record.rangeValid, where);
  addStatements("rangeDoc", record.rangeDoc, where);
  addStatements("ctrlRO", record.ctrlRO, always);
  addStatements("ctrlValid", record.ctrlValid, always);
  addStatements("default", record.defaults, where);
  addStatements("valueChange", record.valueChange, never);
}

CoverageTotals TextCoverage::totals() const {
  CoverageTotals totals;
  for (const DefinitionCoverage& definition : definitions_) {
    totals.definitions.count(definition.judged > 0);
  }
  for (const StatementCoverage& statement : statements_) {
    if (!statement.isNeverChosen) totals.statements.count(statement.chosen > 0);
    if (!statement.hasCondition) continue;
    if (!statement.isNeverTrue) totals.outcomes.count(statement.whenTrue > 0);
    if (!statement.isNeverFalse) totals.outcomes.count(statement.whenFalse > 0);
  }
  return totals;
}
