#include "sw/parm/set_value.h"

#include <algorithm>
#include <utility>

#include "base/number.h"
#include "base/system_log.h"
#include "base/work.h"
#include "sw/parm/constraints.h"

namespace {

// What is wrong with an instance's index values.
struct IndexFault {
  std::string text;            // for the log; empty while no fault was found
  bool withVariables = false;  // whether the log shows the variables too
};

std::string quoted(const std::string& text) { return '"' + text + '"'; }

void logSetError(const ParmDef& parm, const std::string& text) {
  logError("set: ERROR " + quoted(parm.name()) + ": " + text);
}

std::string countFault(const ParmDef& parm, const IndexTuple& indices) {
  return "Not enough indices " + std::to_string(parm.indices().size()) + ">" +
         std::to_string(indices.size());
}

// Whether an index takes a value. If not, the reason goes to `fault`; null where nobody will read
// it.
bool takesValue(PresentIndex& index, const std::string& value, IndexFault* fault) {
  if (!index.isAvailable()) {
    if (fault != nullptr) *fault = {"Invalid index[" + index.name() + "]", true};
    return false;
  }
  if (!index.takes(value)) {
    if (fault != nullptr) {
      *fault = {"Invalid index value[" + quoted(index.name()) + "=" + quoted(value) + "]", true};
    }
    return false;
  }
  return true;
}

// One call of setValue(): the parameter, the situation, and the indices as they are for the
// instance.
struct Setting {
  const ParmDef& parm;
  Situation& situation;
  PresentIndices& present;
};

// Binds the index values one by one, so that each index sees those before it, up to the first that
// is refused. Returns whether all are bound and none is missing or left over.
//
// `isStored` tells that the instance has a stored value. Its index values were accepted when it was
// stored, and a plain index accepts the same values in every situation, so they are not checked
// again. That holds only where their number is right: values with brackets in them can make a name
// that looks like another instance's.
bool bindIndices(const Setting& set, const IndexTuple& indices, bool isStored, IndexFault* fault) {
  const ParmDef& parm = set.parm;
  const size_t pairs = std::min(indices.size(), parm.indices().size());
  const bool isComplete = indices.size() == parm.indices().size();
  for (size_t i = 0; i < pairs; ++i) {
    const bool isAccepted = isStored && isComplete && parm.indices()[i]->isPlain();
    if (!isAccepted && !takesValue(set.present.at(i, set.situation), indices[i], fault)) {
      return false;
    }
    parm.bindIndex(set.situation, i, indices[i]);
  }
  if (!isComplete && fault != nullptr) *fault = {countFault(parm, indices), false};
  return isComplete;
}

// Writes the variables that the expressions of the parameter and of its indices see to the log.
void dumpVariables(const Setting& set) {
  BoundVariables bound;
  bound.add(set.parm.variables(), set.situation);
  for (size_t i = 0; i < set.parm.indices().size(); ++i) {
    bound.add(set.parm.indices()[i]->variables(), set.present.at(i, set.situation).situation());
  }
  bound.dump();
}

void logIndexFault(const Setting& set, const IndexFault& fault) {
  logSetError(set.parm, fault.text);
  if (fault.withVariables) dumpVariables(set);
}

// Whether a value that all bounds have corrected still lies in the base bounds, or conditional ones
// have brought it out of them. Without those that cannot happen: only the base bounds correct.
bool isLeftInBase(const ParmDef& parm, const std::string& corrected) {
  return parm.conditionalBounds().empty() || parm.checkBase(corrected);
}

// Corrects a value by the bounds. Returns false, after a line in the log, where it is refused.
bool correctByBounds(const ParmDef& parm, std::string& value, const Situation& situation) {
  static_cast<void>(correctValue(parm, value, situation));
  if (isLeftInBase(parm, value)) return true;
  logSetError(parm, "Invalid value " + quoted(value));
  return false;
}

SetCode correctByConstraints(const Setting& set, std::string& value,
                             const Constraints& constraints) {
  switch (constraints.correct(value)) {
    case CONSTRAINTS_MET:
      return SET_STORED;
    case CONSTRAINTS_FAIL:
      return SET_RULE_FAILS;
    default:
      logSetError(set.parm, "Constraints failed " + quoted(value));
      dumpVariables(set);
      return SET_INVALID_VALUE;
  }
}

// Brings a value that may be written into what the parameter takes.
SetCode correct(const Setting& set, std::string& value) {
  if (set.parm.hasConstraints()) {
    const Constraints constraints(set.parm, set.situation);
    if (constraints.apply()) return correctByConstraints(set, value, constraints);
  }
  return correctByBounds(set.parm, value, set.situation) ? SET_STORED : SET_INVALID_VALUE;
}

// Whether one of the ends of the spans or of the texts is taken. Where two bounds share a value,
// they share one of these.
template <typename IsTaken>
bool isAnyEndTaken(const BoundsParm& bounds, const IsTaken& isTaken) {
  return std::ranges::any_of(bounds.integers().spans(),
                             [&](const Span& span) {
                               return isTaken(numberText(span.first)) ||
                                      isTaken(numberText(span.second));
                             }) ||
         std::ranges::any_of(bounds.strings().texts(), isTaken);
}

// Stores a corrected value, unless the instance holds that text already. `held` is where the value
// of the instance is, or null where that has to be looked up.
CommittedValue& store(ParmDef& parm, const IndexTuple& indices, const std::string& value,
                      CommittedValue* held) {
  CommittedValue& place = held != nullptr ? *held : parm.stored(indices);
  if (place.value.text() != value) place.value.set(value);
  return place;
}

}  // namespace

SetResult setValue(ParmDef& parm, std::string value, const IndexTuple& indices, Situation situation,
                   PresentIndices& present, SetOptions options) {
  if (parm.mode() == MODE_NEVER || !parm.isAvailable(situation)) return {SET_NOT_STORED, {}};
  const Setting set{parm, situation, present};
  IndexFault fault;
  IndexFault* const wanted = options.quietIndices ? nullptr : &fault;
  if (!bindIndices(set, indices, options.held != nullptr, wanted)) {
    if (wanted != nullptr) logIndexFault(set, fault);
    return {SET_INVALID_INDEX, {}};
  }
  if (!options.force && parm.isReadOnly(situation)) return {SET_NOT_STORED, {}};
  const SetCode code = correct(set, value);
  if (code == SET_RULE_FAILS) return {code, std::move(value)};
  if (code != SET_STORED) return {code, {}};
  CommittedValue* const held =
      options.dryRun ? nullptr : &store(parm, indices, value, options.held);
  return {parm.mode() == MODE_ROSTRICT ? SET_STORED_UNREPORTED : SET_STORED, std::move(value),
          held};
}

bool takesAnyValue(const ParmDef& parm, const Situation& situation) {
  if (parm.hasConstraints() || parm.baseBounds().count() == 0) return true;
  if (parm.conditionalBounds().empty()) return true;
  const PresentBounds present(parm.conditionalBounds(), situation, UNUSABLE_ACCEPTS);
  const auto isTaken = [&](std::string value) {
    Work::add(parm.askingWork() + WORK_PER_VALUE_BYTE * value.size());
    if (!parm.checkBase(value)) return false;
    static_cast<void>(correctByBase(parm, value));
    static_cast<void>(present.judge(value));
    return isLeftInBase(parm, value);
  };
  return std::ranges::any_of(
             present.applying(),
             [&](const BoundsParm* bounds) { return isAnyEndTaken(*bounds, isTaken); }) ||
         isAnyEndTaken(parm.baseBounds(), isTaken) ||
         std::ranges::any_of(parm.translations(),
                             [&](const auto& translation) { return isTaken(translation.first); });
}
