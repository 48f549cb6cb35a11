#include <algorithm>

#include "check/proof/cone.h"
#include "check/proof/present_value.h"
#include "check/proof/questions.h"
#include "check/proof/replay.h"
#include "check/proof/resting.h"
#include "check/proof/setter.h"
#include "check/proof/start_order.h"
#include "check/static/token_place.h"
#include "database/gather.h"
#include "sw/parm/parm_name.h"
#include "sw/parm/present_bounds.h"

namespace {

// Of a parameter that many depend on, each instance is much like the other.
constexpr size_t FEW_INSTANCES = 64;

// The text of a default that is the same in all situations.
std::optional<std::string> constantTextOf(const CompiledItem& value) {
  return value.text ? value.text : constantText(*value.lower);
}

// What a default means: a word that is translated is kept as its translation, unless that is
// corrected back to the word.
std::string translated(const ParmDef& parm, std::string value) {
  parm.translateTwice(value);
  return value;
}

// That a default counts: its condition is true, and none of those before it does; without a
// condition, none at all.
Goal countsGoal(const Subject& subject, const CompiledStatement& statement) {
  Goal counts{&subject};
  counts.dependsOnRanges = true;
  for (const CompiledStatement& other : subject.defaults) {
    if (&other == &statement && statement.condition) break;
    if (other.condition) counts.clauses.push_back(passedOverDefault(other));
  }
  if (statement.condition) counts.clauses.push_back({{&*statement.condition, WANT_TRUE}});
  return counts;
}

// What is told of the translation of `value`, or null.
const Finding* findingOfTranslation(Proof& proof, const Subject& subject, std::string_view value) {
  for (const Translation& translation : subject.record->valueChange) {
    if (translation.source != value) continue;
    const TextPlace at = targetPlace(proof.text().checked().source, translation);
    if (const Finding* const cause = proof.found("translation", at)) return cause;
  }
  return nullptr;
}

// A finding about the default `value` takes the place of what is told of its text, or of what that
// is translated to.
void addCause(Proof& proof, const Subject& subject, std::string_view value, Finding& finding) {
  if (const Finding* const cause = proof.found("unknown-standard", finding.at)) {
    finding.at = cause->at;
    finding.related.push_back({cause->at, cause->text});
    finding.proposal = cause->proposal;
  } else if (const Finding* const other = findingOfTranslation(proof, subject, value)) {
    finding.related.push_back({other->at, other->text});
  }
}

// Returns whether it is told that no situation keeps the default.
bool askDefault(Proof& proof, const Subject& subject, const CompiledStatement& statement) {
  const CompiledItem& value = statement.items.front();
  const std::optional<std::string> text = constantTextOf(value);
  if (!text) return false;
  const Goal counts = countsGoal(subject, statement);
  std::string instead;
  const auto isKept = [&](const IndexTuple& indices) {
    const std::optional<std::string> kept = valueKept(*subject.parm, indices, *text);
    const bool isSame = kept == *text || kept == translated(subject.parm->parm, *text);
    if (kept && !isSame) instead = *kept;
    return isSame;
  };
  const HealthyResult result = proof.findHealthy(counts, isKept);
  if (proof.isCutShort()) {
    proof.addUndecided({"default-outside", placeOf(value), "no situation keeps this default"});
  }
  // Where it never counts, or the parameter is never there, another finding says so.
  if (result.verdict != VERDICT_IMPOSSIBLE || instead.empty()) return false;
  Finding finding{"default-outside", placeOf(value),
                  "no situation keeps this default: it becomes \"" + instead + '"'};
  addCause(proof, subject, *text, finding);
  proof.add(std::move(finding));
  return true;
}

// Looks for a default that is lost where everything has its own, as after a start.
class DefaultsOfTheStart {
 public:
  DefaultsOfTheStart(Proof& proof, const Explained& explained, const Subject& subject)
      : proof_(proof),
        explained_(explained),
        database_(proof.text().database()),
        subject_(subject) {}

  void ask() {
    for (const IndexTuple& indices : someInstances(subject_.parm->parm, FEW_INSTANCES)) {
      bool isLost = false;
      if (!proof_.ask([&] { isLost = askInstance(indices); })) {
        proof_.addUndecided({"default-outside", placeOf(subject_.defaults.front().items.front()),
                             "the start does not keep this default"});
      }
      if (isLost || proof_.isCutShort()) return;
    }
  }

 private:
  bool askInstance(const IndexTuple& indices) {
    StartOrder order;
    if (!findStartOrder(database_, fullName(subject_.name(), indices), order)) return false;
    start(order);
    const bool isLost = !isExplained(order) && tellWhereLost(indices, order);
    for (const Instance& instance : order.instances) {
      if (instance.isComplete()) Setter::unset(*instance.parm, instance.indices);
    }
    return isLost;
  }

  // Resets all: one after the other, which takes less time, or by levels, where values of one level
  // are judged by each other.
  void start(const StartOrder& order) {
    if (hasRing(order)) {
      ConfinedCommits(order.names, database_, ConfinedCommits::KEEP_VALUES).start();
      return;
    }
    Setter setter;
    for (const Instance& instance : order.instances) {
      if (instance.isComplete()) reset(*instance.parm, instance.indices, setter);
    }
  }

  static bool hasRing(const StartOrder& order) {
    return std::ranges::any_of(order.instances, [](const Instance& instance) {
      return refersBack(instance.parm->sources, *instance.parm);
    });
  }

  static void reset(ParmEntry& parm, const IndexTuple& indices, Setter& setter) {
    std::string value;
    static_cast<void>(parm.parm.defaultValue(value, gatherBound(parm, indices, setter.staged())));
    static_cast<void>(setter.set(parm, indices, value));
  }

  // Whether another finding tells of a value that is held.
  [[nodiscard]] bool isExplained(const StartOrder& order) const {
    return std::ranges::any_of(order.instances, [&](const Instance& instance) {
      if (!instance.isComplete()) return false;
      const ParmDef& parm = instance.parm->parm;
      const Subject* const subject = proof_.text().find(parm.name());
      return explained_.explainedText(*subject, parm.committedText(instance.indices)) != nullptr;
    });
  }

  bool tellWhereLost(const IndexTuple& indices, const StartOrder& order) {
    const StagedValues staged;
    std::string value;
    const auto situation = gatherBound(*subject_.parm, indices, staged);
    static_cast<void>(subject_.parm->parm.defaultValue(value, situation));
    if (value.empty()) return false;
    const std::string written = value;
    value = translated(subject_.parm->parm, value);
    const std::optional<std::string> kept = valueKept(*subject_.parm, indices, value);
    if (!kept || *kept == value || *kept == written || isDerived(situation)) return false;
    const CompiledStatement* const statement = statementThatCounts(indices);
    if (statement == nullptr) return false;
    Finding finding{"default-outside", placeOf(statement->items.front()),
                    "the start does not keep this default: with the defaults of the others \"" +
                        value + "\" becomes \"" + *kept + '"'};
    for (const Instance& instance : order.instances) {
      if (instance.parm == subject_.parm || !instance.isComplete()) continue;
      finding.witness.emplace_back(fullName(instance.parm->parm.name(), instance.indices),
                                   instance.parm->parm.committedText(instance.indices));
    }
    // What does not come to rest is told of that.
    if (!restAfterStart(order.names, database_, proof_.deadline())) return false;
    proof_.add(std::move(finding));
    return true;
  }

  static bool hasSpan(const CompiledStatement& statement) {
    return std::ranges::any_of(statement.items,
                               [](const CompiledItem& item) { return item.upper.has_value(); });
  }

  // Whether there is only one value to have, so that the default is for other situations. A span
  // that happens to have one is not written for that.
  [[nodiscard]] bool isDerived(const SituationView& situation) const {
    const PresentBounds present(subject_.parm->parm.conditionalBounds(), situation,
                                UNUSABLE_ACCEPTS);
    Domain domain;
    for (const BoundsParm* const bounds : present.applying()) domain.add(*bounds);
    return domain.size() == 1 && std::ranges::none_of(subject_.rangeValid, hasSpan);
  }

  [[nodiscard]] const CompiledStatement* statementThatCounts(const IndexTuple& indices) const {
    const Reader reader(subject_.parm, indices, indices.size());
    const StagedValues staged;
    const CompiledStatement* last = nullptr;
    for (const CompiledStatement& statement : subject_.defaults) {
      const CompiledItem& item = statement.items.front();
      if (item.lower && !presentValue(*item.lower, reader, staged).valid()) continue;
      if (!statement.condition) {
        last = &statement;
      } else if (presentValue(*statement.condition, reader, staged).isTrue()) {
        return &statement;
      }
    }
    return last;
  }

  Proof& proof_;
  const Explained& explained_;
  Database& database_;
  const Subject& subject_;
};

}  // namespace

void askDefaults(Proof& proof, const Explained& explained) {
  proof.forEachSubject([&](const Subject& subject) {
    if (subject.parm == nullptr || subject.parm->parm.mode() == MODE_NEVER) return;
    bool isTold = false;
    for (const CompiledStatement& statement : subject.defaults) {
      const CompiledItem& value = statement.items.front();
      const bool isExplained = value.text ? explained.explainedText(subject, *value.text) != nullptr
                                          : explained.places.contains(value.at);
      if (isExplained) {
        isTold = true;
      } else if (!explained.dead.contains(&statement)) {
        isTold = askDefault(proof, subject, statement) || isTold;
      }
    }
    // What the device itself sets, and what follows others, has a default only not to be empty.
    const bool isSetByClients =
        subject.record->access == ACCESS_RW || subject.record->access == ACCESS_WO;
    const bool follows = !subject.defaults.empty() && !subject.parm->sources.empty() &&
                         !explained.explains(subject.rangeValid);
    if (isSetByClients && follows && !isTold) DefaultsOfTheStart(proof, explained, subject).ask();
  });
}
