#include <unordered_set>

#include "check/static/static_checks.h"

void checkUnusedIndices(StaticContext& context) {
  std::unordered_set<std::string_view> used;
  for (const NamedDefinition& definition : context.definitions()) {
    const std::string_view own = definition.record->name;
    for (const IndexStatement& list : definition.record->indices) {
      // The engine reports a wrong name, which may be meant for any index.
      if (!context.areIndices(list)) return;
      for (const IndexName& index : list) used.insert(index.name);
    }
    forEachExpression(*definition.record, [&](ExpressionUse /*use*/, const Expression& expression) {
      for (const Token& token : expression.tokens) {
        if (token.kind != TOKEN_VARIABLE) continue;
        const Reference reference = context.referenceOf(token);
        if (reference.base != own) used.insert(reference.base);
      }
    });
  }
  for (const NamedDefinition& definition : context.definitions()) {
    const std::string_view name = definition.record->name;
    if (!definition.isIndex() || used.contains(name)) continue;
    context.add({"unused-index", definition.name,
                 "no parameter has the index " + inQuotes(name) +
                     "; name it in an index statement, or remove it"});
  }
}
