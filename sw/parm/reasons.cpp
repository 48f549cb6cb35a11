#include "sw/parm/reasons.h"

#include <algorithm>
#include <utility>

#include "sw/parm/constraints.h"

namespace {

// Adds the names of a program with what they are, but for those that are there already.
void addNames(const Program& program, const Variables& variables, const SituationView& situation,
              std::vector<UsedName>& names) {
  for (const Program::Step& step : program.steps()) {
    if (step.kind != TOKEN_VARIABLE) continue;
    const auto slot = static_cast<uint32_t>(step.value);
    const std::string name(variables[slot]);
    const bool isKnown =
        std::ranges::any_of(names, [&](const UsedName& known) { return known.name == name; });
    if (isKnown) continue;
    const Operand& operand = situation[slot];
    UsedName& used = names.emplace_back(UsedName{name, {}});
    if (operand.kind != OPERAND_INVALID) used.value = operandText(operand);
  }
}

// The places of the bounds that apply, as PresentBounds takes them.
std::vector<size_t> applyingPlaces(std::span<const ConditionalBounds> bounds,
                                   const SituationView& situation, UnusableRange unusable) {
  std::vector<size_t> places;
  for (size_t i = 0; i < bounds.size(); ++i) {
    const PresentBounds present(bounds.subspan(i, 1), situation, unusable);
    if (!present.applying().empty()) places.push_back(i);
  }
  return places;
}

// The place of an element in its list; the size where it is in another one.
template <typename T>
size_t placeIn(std::span<const T> list, const T* element) {
  const auto found = std::ranges::find(list, element, [](const T& one) { return &one; });
  return static_cast<size_t>(found - list.begin());
}

bool acceptsAlone(const ConditionalBounds& bounds, std::string value,
                  const SituationView& situation) {
  const PresentBounds present({&bounds, 1}, situation, UNUSABLE_ACCEPTS);
  return present.judge(value);
}

}  // namespace

Reason IndexReasons::reason(const SourceStatement& statement,
                            std::initializer_list<const Program*> programs,
                            const SituationView& situation) const {
  Reason reason{statement.line, statement.text, {}};
  for (const Program* program : programs) {
    addNames(*program, index_.variables(), situation, reason.names);
  }
  return reason;
}

Reason IndexReasons::baseReason() const {
  return {statements_.base.line, statements_.base.text, {}};
}

Reason IndexReasons::boundsReason(const SourceStatement& statement, const ConditionalBounds& bounds,
                                  const SituationView& situation) const {
  Reason result = reason(statement, {&bounds.condition}, situation);
  if (bounds.computed == nullptr) return result;
  for (const BoundsExpression::Item& item : bounds.computed->items()) {
    addNames(item.lower, index_.variables(), situation, result.names);
    if (item.upper) addNames(*item.upper, index_.variables(), situation, result.names);
  }
  return result;
}

Reason IndexReasons::rangeReason(size_t place, const SituationView& situation) const {
  return boundsReason(statements_.ranges[place], index_.conditionalBounds()[place], situation);
}

std::vector<Reason> IndexReasons::availability(const SituationView& situation) const {
  std::vector<Reason> reasons;
  const std::span<const Program> conditions = index_.validityConditions();
  for (size_t i = 0; i < conditions.size(); ++i) {
    Reason next = reason(statements_.validity[i], {&conditions[i]}, situation);
    if (!conditions[i].isTrue(situation)) return {std::move(next)};
    reasons.push_back(std::move(next));
  }
  return reasons;
}

std::vector<Reason> IndexReasons::refusal(const std::string& value,
                                          const SituationView& situation) const {
  std::string translated = value;
  index_.translateTwice(translated);
  if (!index_.baseBounds().check(translated, false)) return {baseReason()};
  const std::span<const ConditionalBounds> bounds = index_.conditionalBounds();
  std::vector<size_t> places = applyingPlaces(bounds, situation, UNUSABLE_ACCEPTS);
  if (places.empty()) {
    for (size_t i = 0; i < bounds.size(); ++i) places.push_back(i);
  }
  std::vector<Reason> reasons;
  reasons.reserve(places.size());
  for (const size_t place : places) reasons.push_back(rangeReason(place, situation));
  return reasons;
}

std::vector<Reason> ParmReasons::readOnly(const SituationView& situation) const {
  std::vector<Reason> reasons;
  if (parm_.mode() == MODE_WRITE_ONLY) return reasons;
  const std::span<const Program> conditions = parm_.readOnlyConditions();
  for (size_t i = 0; i < conditions.size(); ++i) {
    Reason next = reason(statements().readOnly[i], {&conditions[i]}, situation);
    // No statement has made the condition: the access word has.
    if (next.line == 0) {
      next = {statements().definition, std::string(accessText(parm_.access())), {}};
    }
    if (conditions[i].isTrue(situation)) return {std::move(next)};
    reasons.push_back(std::move(next));
  }
  return reasons;
}

std::optional<Reason> ParmReasons::defaultValue(const SituationView& situation) const {
  Value result;
  if (const ConditionalDefault* const found = parm_.decidingDefault(situation, result)) {
    const auto& [condition, value] = *found;
    return reason(statements().defaults[placeIn(parm_.defaults(), found)], {&condition, &value},
                  situation);
  }
  if (statements().fallback.line == 0) return std::nullopt;
  return Reason{statements().fallback.line, statements().fallback.text, {}};
}

std::optional<Reason> ParmReasons::range(const SituationView& situation) const {
  if (const ConditionalBounds* const found = parm_.decidingRange(situation)) {
    const std::span<const ConditionalBounds> documented = parm_.documentedRanges();
    if (const size_t place = placeIn(documented, found); place < documented.size()) {
      return boundsReason(statements().documented[place], *found, situation);
    }
    return rangeReason(placeIn(parm_.conditionalBounds(), found), situation);
  }
  if (statements().base.line == 0) return std::nullopt;
  return baseReason();
}

std::vector<Reason> ParmReasons::colliding(const SituationView& situation) const {
  std::vector<Reason> reasons;
  if (statements().base.line != 0) reasons.push_back(baseReason());
  for (const size_t place :
       applyingPlaces(parm_.conditionalBounds(), situation, UNUSABLE_ACCEPTS)) {
    reasons.push_back(rangeReason(place, situation));
  }
  return reasons;
}

ValueReasons ParmReasons::value(std::string value, const Situation& situation) const {
  ValueReasons out;
  translate(value, out);
  if (parm_.hasConstraints() && Constraints(parm_, situation).apply()) {
    judge(value, situation, UNUSABLE_DROPPED, out);
    return out;
  }
  const std::string before = value;
  if (statements().base.line != 0) {
    static_cast<void>(parm_.baseBounds().check(value, true));
    if (value != before) out.steps.push_back({baseReason(), value});
    out.acceptedBy = baseReason();
  }
  if (parm_.conditionalBounds().empty()) return out;
  judge(value, situation, UNUSABLE_ACCEPTS, out);
  out.isRefused = !parm_.checkBase(value);
  if (out.isRefused) out.acceptedBy = baseReason();
  return out;
}

void ParmReasons::translate(std::string& value, ValueReasons& out) const {
  for (int i = 0; i < 2; ++i) {
    const auto found = parm_.translations().find(value);
    if (found == parm_.translations().end()) return;
    const auto place = static_cast<size_t>(std::distance(parm_.translations().begin(), found));
    value = found->second;
    const SourceStatement& statement = statements().translations[place];
    out.steps.push_back({{statement.line, statement.text, {}}, value});
  }
}

// Corrects by the first of the bounds that apply, unless any of them accepts.
void ParmReasons::judge(std::string& value, const Situation& situation, UnusableRange unusable,
                        ValueReasons& out) const {
  const std::span<const ConditionalBounds> bounds = parm_.conditionalBounds();
  const std::vector<size_t> places = applyingPlaces(bounds, situation, unusable);
  if (places.empty()) return;
  const auto accepting = std::ranges::find_if(
      places, [&](size_t place) { return acceptsAlone(bounds[place], value, situation); });
  const bool isAccepted = accepting != places.end();
  Reason decided = rangeReason(isAccepted ? *accepting : places.front(), situation);
  const std::string before = value;
  static_cast<void>(PresentBounds(bounds, situation, unusable).judge(value));
  if (value != before) out.steps.push_back({decided, value});
  out.acceptedBy = std::move(decided);
}
