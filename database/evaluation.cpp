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
  [[nodiscard]] PresentIndex& at(size_t place, const Situation& own) override {
    return situations_.at(*entry_.parm, entry_.indices, place, own);
  }

 private:
  const StagedEntry& entry_;
  IndexSituations& situations_;
};

// Whether the value of an entry has to be set to be `text`. What is remembered of indices may view
// the value, which therefore stays where it is if it does not change.
bool isToBeSet(const StagedEntry& entry, const std::string& text) {
  return !entry.parm->isNamedByIndices || entry.value.text() != text;
}

// Drops what is remembered of indices before the value of an entry changes.
void forgetIndices(const StagedEntry& entry, IndexSituations& situations) {
  if (entry.parm->isNamedByIndices) situations.forget(*entry.parm);
}

// What a stored value is as an operand need not be worked out again.
void takeValue(ValueText& value, SetResult& result) {
  if (result.held != nullptr) {
    value.set(std::move(result.value), result.held->value);
  } else {
    value.set(std::move(result.value));
  }
}

}  // namespace

SetCode evaluate(StagedEntry& entry, IndexSituations& situations, bool dryRun) {
  Work::spendOn(entry.parm->parm.name());
  Work::add(entry.parm->parm.evaluationWork() + WORK_PER_VALUE_BYTE * entry.value.text().size());
  const SetOptions options{entry.force, dryRun, entry.generated, entry.held};
  IndicesOfEntry indices(entry, situations);
  SetResult result =
      setValue(entry.parm->parm, entry.value.text(), entry.indices,
               gather(*entry.parm, entry.indices, situations.staged()), indices, options);
  if (result.held != nullptr) entry.held = result.held;
  if (!isAccepted(result.code) && result.code != SET_RULE_FAILS) {
    takeCommitted(entry, situations);
  } else if (isToBeSet(entry, result.value)) {
    forgetIndices(entry, situations);
    takeValue(entry.value, result);
  }
  const bool isPassedOver = entry.generated && result.code == SET_INVALID_INDEX;
  return isPassedOver ? SET_NOT_STORED : result.code;
}

void takeCommitted(StagedEntry& entry, IndexSituations& situations) {
  const std::string& committed = committedText(entry);
  if (isToBeSet(entry, committed)) {
    forgetIndices(entry, situations);
    entry.value.set(committed);
  }
  entry.force = true;
}
