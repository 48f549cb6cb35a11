// Record expressions: all expressions of a definition's record.
#pragma once

#include "deflang/text/record.h"

/// Calls `visit` with each expression of `record` that has tokens, also with those that the builder
/// leaves out.
template <typename Visit>
void forEachExpression(const ParameterRecord& record, const Visit& visit) {
  const auto look = [&visit](const Expression& expression) {
    if (!expression.empty()) visit(expression);
  };
  for (const StatementList<RangeStatement>* ranges : {&record.rangeValid, &record.rangeDoc}) {
    for (const RangeStatement& range : *ranges) {
      look(range.condition);
      for (const RangeItem& item : range.items) {
        look(item.lower);
        if (item.upper) look(*item.upper);
      }
    }
  }
  for (const Expression& condition : record.ctrlRO) look(condition);
  for (const Expression& condition : record.ctrlValid) look(condition);
  for (const DefaultStatement& value : record.defaults) {
    look(value.condition);
    look(value.value);
  }
}
