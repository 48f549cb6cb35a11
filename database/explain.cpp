#include "database/explain.h"

#include <utility>

#include "base/system_log.h"
#include "base/work.h"
#include "database/evaluation.h"
#include "database/gather.h"
#include "database/index_situations.h"
#include "sw/parm/parm_name.h"

namespace {

// The instance of a name; nullopt where the name is of none.
struct NamedInstance {
  ParmEntry* parm;
  IndexTuple indices;
};

std::optional<NamedInstance> findInstance(Database& database, std::string_view name) {
  ParmEntry* const parm = database.findNamed(name);
  if (parm == nullptr) return std::nullopt;
  IndexTuple indices = splitName(name).indices;
  if (indices.size() != parm->parm.indices().size()) return std::nullopt;
  return NamedInstance{parm, std::move(indices)};
}

class Explainer {
 public:
  Explainer(Database& database, const StagedValues& staged, const NamedInstance& instance)
      : database_(database),
        staged_(staged),
        parm_(*instance.parm),
        indices_(instance.indices),
        own_(gather(parm_, indices_, staged)),
        reasons_(parm_.parm, database.statementsOf(parm_)) {
    Work::add(parm_.parm.evaluationWork());
  }

  void explainExistence(Explanation& out) {
    out.existence = reasons_.availability(own_);
    // The conditions of a definition that is never available need not be asked.
    out.exists = parm_.parm.mode() != MODE_NEVER && parm_.parm.isAvailable(own_);
    if (!out.exists) return;
    IndexSituations situations(staged_);
    for (size_t place = 0; place < indices_.size(); ++place) {
      explainIndex(place, situations.at(parm_, indices_, place, own_), out);
      if (!out.exists) return;
      parm_.parm.bindIndex(own_, place, indices_[place]);
    }
  }

  void explainRest(Explanation& out) const {
    const Situation situation = gatherBound(parm_, indices_, staged_);
    out.isReadOnly = parm_.parm.isReadOnly(situation);
    out.readOnly = reasons_.readOnly(situation);
    out.takesAny = takesAnyValue(parm_.parm, situation);
    if (!out.takesAny) out.colliding = reasons_.colliding(situation);
    out.rangeResult = parm_.parm.range(out.range, situation);
    out.limit = reasons_.range(situation);
    static_cast<void>(parm_.parm.defaultValue(out.defaultValue, situation));
    out.defaultDecider = reasons_.defaultValue(situation);
  }

  void explainValue(const std::string& value, bool force, ValueExplanation& out) const {
    StagedEntry entry;
    entry.parm = &parm_;
    entry.indices = indices_;
    entry.value.set(value);
    entry.force = force;
    IndexSituations situations(staged_);
    out.code = evaluate(entry, situations, true);
    if (isAccepted(out.code)) out.value = entry.value.text();
    const bool isJudged = isAccepted(out.code) || out.code == SET_INVALID_VALUE;
    if (isJudged) out.reasons = reasons_.value(value, gatherBound(parm_, indices_, staged_));
  }

 private:
  void explainIndex(size_t place, PresentIndex& present, Explanation& out) const {
    const IndexEntry& index = *parm_.indices->own[place];
    const IndexReasons reasons(*index.index, database_.statementsOf(index));
    if (present.isAvailable() && present.takes(indices_[place])) return;
    out.exists = false;
    out.refusingIndex = present.name();
    if (!present.isAvailable()) {
      out.existence = reasons.availability(present.situation());
      return;
    }
    out.existence = reasons.refusal(indices_[place], present.situation());
    const UsedName refused{present.name(), indices_[place]};
    for (Reason& reason : out.existence) reason.names.insert(reason.names.begin(), refused);
  }

  Database& database_;
  const StagedValues& staged_;
  ParmEntry& parm_;
  const IndexTuple& indices_;
  Situation own_;
  ParmReasons reasons_;
};

}  // namespace

int explain(Database& database, const StagedValues& staged, std::string_view name,
            Explanation& out) {
  const LogRedirection silence([](const std::string& /*line*/) {});
  const std::optional<NamedInstance> instance = findInstance(database, name);
  if (!instance) return EXPLAIN_INVALID_NAME;
  Explainer explainer(database, staged, *instance);
  explainer.explainExistence(out);
  explainer.explainRest(out);
  return EXPLAIN_DONE;
}

int explainValue(Database& database, const StagedValues& staged, std::string_view name,
                 const std::string& value, bool force, ValueExplanation& out) {
  const LogRedirection silence([](const std::string& /*line*/) {});
  const std::optional<NamedInstance> instance = findInstance(database, name);
  if (!instance) return EXPLAIN_INVALID_NAME;
  Explainer(database, staged, *instance).explainValue(value, force, out);
  return EXPLAIN_DONE;
}
