#include "database/evaluation.h"

#include <string>
#include <utility>

#include "base/work.h"
#include "database/gather.h"

namespace {

// The indices of the instance of one entry.
class IndicesOfEntry final : public PresentIndices {
 public:
  IndicesOfEntry(const StagedEntry& entry, IndexSituations& situations)
      : entry_(entry), situations_(situations) {}
  [[nodiscard]] PresentIndex& at(size_t position, const Situation& own) override {
    return situations_.at(*entry_.parm, entry_.indices, position, own);
  }

 private:
  const StagedEntry& entry_;
  IndexSituations& situations_;
};

// Whether the value of an entry has to be set to be `text`. What is remembered of indices may view
// the value, which therefore stays where it is if it does not change.
bool changes(const StagedEntry& entry, const std::string& text, IndexSituations& situations) {
  if (!entry.parm->isNamedByIndices) return true;
  if (entry.value.text() == text) return false;
  situations.forget(*entry.parm);
  return true;
}

}  // namespace

setOutcome_t evaluate(StagedEntry& entry, IndexSituations& situations, bool dryRun) {
  Work::spendOn(entry.parm->parm.name());
  Work::add(entry.parm->parm.evaluationWork() + WORK_PER_VALUE_BYTE * entry.value.text().size());
  std::string value = entry.value.text();
  const setMode_t mode{entry.status, dryRun, entry.generated, entry.held};
  IndicesOfEntry indices(entry, situations);
  const setOutcome_t outcome =
      setValue(entry.parm->parm, value, entry.indices,
               gather(*entry.parm, entry.indices, situations.staged()), indices, mode);
  if (outcome.held != nullptr) {
    entry.held = outcome.held;
  }
  if (!outcome.stored && outcome.result != SET_RULE_FAILS) {
    takeCommitted(entry, situations);
  } else if (changes(entry, value, situations)) {
    if (outcome.held != nullptr) {
      entry.value.set(std::move(value), outcome.held->value);
    } else {
      entry.value.set(std::move(value));
    }
  }
  const bool passedOver = entry.generated && outcome.result == SET_INVALID_INDEX;
  return passedOver ? setOutcome_t{SET_STORED, false} : outcome;
}

void takeCommitted(StagedEntry& entry, IndexSituations& situations) {
  const std::string& committed = committedText(entry);
  if (changes(entry, committed, situations)) {
    entry.value.set(committed);
  }
  entry.status = true;
}
