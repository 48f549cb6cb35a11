#include "database/evaluation.h"

#include <string>

#include "database/gather.h"
#include "deflang/work.h"

setOutcome_t evaluate(StagedEntry& entry, const StagedValues& staged, bool dryRun) {
  Work::spendOn(entry.parm->parm.name());
  Work::add(entry.parm->parm.evaluationWork() + WORK_PER_VALUE_BYTE * entry.value.text().size());
  std::string value = entry.value.text();
  const setMode_t mode{entry.status, dryRun, entry.generated, entry.held};
  const setOutcome_t outcome = setValue(entry.parm->parm, value, entry.indices,
                                        gather(*entry.parm, entry.indices, staged), mode);
  if (outcome.held != nullptr) {
    entry.held = outcome.held;
    entry.value.set(std::move(value), outcome.held->value);
  } else if (outcome.stored || outcome.result == SET_RULE_FAILS) {
    entry.value.set(std::move(value));
  } else {
    takeCommitted(entry);
  }
  const bool passedOver = entry.generated && outcome.result == SET_INVALID_INDEX;
  return passedOver ? setOutcome_t{SET_STORED, false} : outcome;
}

void takeCommitted(StagedEntry& entry) {
  entry.value.set(committedText(entry));
  entry.status = true;
}
