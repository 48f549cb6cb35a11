#include "check/static/static_bounds.h"
#include "check/static/static_checks.h"

namespace {

// The statements with a run-time condition, by place, in the order of the conditional bounds.
std::vector<size_t> conditionalPlaces(const StaticContext& context, const ParameterRecord& record) {
  std::vector<size_t> places;
  size_t place = 0;
  for (const RangeStatement& statement : record.rangeValid) {
    if (!statement.condition.empty() && !context.decidedCondition(statement.condition)) {
      places.push_back(place);
    }
    ++place;
  }
  return places;
}

// The place of the first statement that always counts.
size_t basePlace(const StaticContext& context, const ParameterRecord& record) {
  size_t place = 0;
  for (const RangeStatement& statement : record.rangeValid) {
    if (statement.condition.empty()) return place;
    const std::optional<Value> condition = context.decidedCondition(statement.condition);
    if (condition && condition->isTrue()) return place;
    ++place;
  }
  return 0;
}

void checkDefinition(StaticContext& context, const NamedDefinition& definition,
                     const IndexDef& built) {
  const std::span<const ConditionalBounds> bounds = built.conditionalBounds();
  if (built.baseBounds().count() == 0 || bounds.empty() || hasRunTimeRange(built)) return;
  std::vector<TextPlace> apart;
  const std::vector<size_t> places = conditionalPlaces(context, *definition.record);
  if (places.size() != bounds.size()) return;
  for (size_t i = 0; i < bounds.size(); ++i) {
    if (shareValue(built.baseBounds(), *bounds[i].constant)) continue;
    apart.push_back(definition.keyword("rangeValid", places[i]));
  }
  if (apart.empty()) return;
  Finding finding = {"disjoint", apart.front(), {}};
  finding.text =
      "this range shares no value with the one without a condition, which always "
      "counts, so ";
  finding.text += definition.isIndex() ? "no instance exists" : "every commit fails";
  finding.text +=
      " while this one alone applies; give the other one a condition, or allow these "
      "values there, too";
  finding.related.push_back(
      {definition.keyword("rangeValid", basePlace(context, *definition.record)),
       "the range without a condition"});
  for (size_t i = 1; i < apart.size(); ++i) finding.related.push_back({apart[i], "so does this"});
  context.add(std::move(finding));
}

}  // namespace

void checkDisjoint(StaticContext& context) {
  for (const NamedDefinition& definition : context.definitions()) {
    if (context.hasExplainedRange(definition)) continue;
    const IndexDef* const built = context.built(definition);
    if (built != nullptr) checkDefinition(context, definition, *built);
  }
}
