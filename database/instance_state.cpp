#include "database/instance_state.h"

#include "base/work.h"
#include "database/gather.h"
#include "database/range_query.h"
#include "sw/parm/parm_name.h"
#include "sw/parm/set_value.h"

bool existsIn(const ParmEntry& parm, const IndexTuple& indices, IndexSituations& situations) {
  if (parm.parm.mode() == MODE_NEVER || indices.size() != parm.parm.indices().size()) return false;
  Work::add(parm.parm.evaluationWork());
  Situation own = gather(parm, indices, situations.staged());
  if (!parm.parm.isAvailable(own)) return false;
  for (size_t place = 0; place < indices.size(); ++place) {
    PresentIndex& index = situations.at(parm, indices, place, own);
    if (!index.isAvailable() || !index.takes(indices[place])) return false;
    parm.parm.bindIndex(own, place, indices[place]);
  }
  return true;
}

InstanceStates::InstanceStates(Transaction& transaction)
    : silence_([](const std::string& /*line*/) {}),
      transaction_(transaction),
      outlook_(transaction),
      settled_(outlook_.values()) {}

InstanceState InstanceStates::of(std::string_view name) {
  InstanceState state;
  const ParmEntry* const parm = transaction_.database().findNamed(name);
  state.value = transaction_.find(name);
  if (parm == nullptr) return state;
  const IndexTuple indices = splitName(name).indices;
  const StagedValues& staged = transaction_.staged();
  state.isKnown = true;
  state.isStaged = staged.find(*parm, indices) != nullptr;
  state.exists = existsIn(*parm, indices, settled_);
  const StagedValues& judged = outlook_.of(*parm);
  IndexSituations atFirst(judged);
  const bool isSettled = &judged == &outlook_.values();
  if (isSettled ? state.exists : existsIn(*parm, indices, atFirst)) {
    const Situation situation = gatherBound(*parm, indices, judged);
    state.isWritable = !parm->parm.isReadOnly(situation) && takesAnyValue(parm->parm, situation);
  }
  state.hasValue = !state.value->empty();
  state.rangeResult = queryRange(transaction_.database(), staged, name, state.range);
  return state;
}
