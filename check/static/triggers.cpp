#include "check/static/static_checks.h"
#include "check/static/token_place.h"

namespace {

// The first name of a parameter in the ranges of `definition`, or null.
const Token* followedBy(const StaticContext& context, const NamedDefinition& definition) {
  const Token* found = nullptr;
  forEachExpression(*definition.record, [&](ExpressionUse use, const Expression& expression) {
    if (use != USE_RANGE_CONDITION && use != USE_RANGE_VALUE && use != USE_RANGE_END) return;
    for (const Token& token : expression.tokens) {
      if (found != nullptr || token.kind != TOKEN_VARIABLE) continue;
      const Reference reference = context.referenceOf(token);
      if (reference.named == nullptr || reference.named->isIndex()) continue;
      if (reference.base != definition.record->name) found = &token;
    }
  });
  return found;
}

}  // namespace

void checkTriggers(StaticContext& context) {
  for (const NamedDefinition& definition : context.definitions()) {
    if (definition.record->access != ACCESS_WO) continue;
    const Token* const followed = followedBy(context, definition);
    if (followed == nullptr) continue;
    Finding finding = {"write-only-condition", tokenPlace(context.source(), *followed),
                       "each commit of " + inQuotes(context.referenceOf(*followed).base) +
                           " announces this trigger again, with its last value, because its range "
                           "follows it; give the trigger a constant range"};
    finding.level = LEVEL_WARNING;
    context.add(std::move(finding));
  }
}
