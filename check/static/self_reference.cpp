#include <set>

#include "check/static/static_checks.h"
#include "check/static/token_place.h"

namespace {

// What comes of the own name there; null where an author may well mean it. A value that is
// computed from the own one rounds it; a default and a menu look at the value from before.
const char* consequenceOf(ExpressionUse use) {
  switch (use) {
    case USE_RANGE_END:
      return "in its own range means the value that is judged, so this end limits nothing; name "
             "what is to limit it";
    case USE_RANGE_CONDITION:
      return "in the condition of its own range means the value that is judged, before it is "
             "translated and corrected; name the parameter that decides, or write the allowed "
             "values as one range";
    case USE_CTRL_RO:
      return "in its own ctrlRO means the value that is being set, not the one that is held, so a "
             "client's value that makes it true is passed over; name another parameter";
    case USE_CTRL_VALID:
      return "in its own ctrlValid means the value that is being set, not the one that is held, "
             "so a value that makes it false is passed over; name another parameter";
    default:
      return nullptr;
  }
}

class SelfReferenceCheck {
 public:
  explicit SelfReferenceCheck(StaticContext& context) : context_(context) {}

  void check(const NamedDefinition& definition) {
    std::set<ExpressionUse> told;
    forEachExpression(*definition.record, [&](ExpressionUse use, const Expression& expression) {
      const char* const consequence = consequenceOf(use);
      if (consequence == nullptr) return;
      for (const Token& token : expression.tokens) {
        if (!namesItself(token, definition)) continue;
        if (told.insert(use).second) tell(token, definition, consequence);
        context_.explained().add(token.at);
      }
    });
    checkWholeRange(definition);
  }

 private:
  // Index values mean one instance, which may well limit the others.
  [[nodiscard]] bool namesItself(const Token& token, const NamedDefinition& definition) const {
    if (token.kind != TOKEN_VARIABLE) return false;
    const Reference reference = context_.referenceOf(token);
    return reference.named == &definition && reference.figure == nullptr &&
           !reference.isQualified();
  }

  // An item that is the bare name accepts everything. With a condition that is a way to accept by
  // another property of the value.
  void checkWholeRange(const NamedDefinition& definition) {
    for (const RangeStatement& range : definition.record->rangeValid) {
      if (!range.condition.empty()) continue;
      for (const RangeItem& item : range.items) {
        const std::span<const Token> tokens = item.lower.tokens;
        if (item.upper || tokens.size() != 1 || !namesItself(tokens[0], definition)) continue;
        tell(tokens[0], definition,
             "in its own range means the value that is judged, so every value is accepted; leave "
             "the item out");
      }
    }
  }

  void tell(const Token& token, const NamedDefinition& definition, const char* consequence) {
    context_.add({"self-reference", tokenPlace(context_.source(), token),
                  inQuotes(definition.record->name) + " " + consequence});
  }

  StaticContext& context_;
};

}  // namespace

void checkSelfReference(StaticContext& context) {
  SelfReferenceCheck check(context);
  for (const NamedDefinition& definition : context.definitions()) {
    if (!definition.isIndex()) check.check(definition);
  }
}
