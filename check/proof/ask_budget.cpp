#include "check/proof/questions.h"
#include "database/largest_change.h"
#include "database/plan.h"

void askBudget(Proof& proof) {
  if (proof.isOver()) {
    proof.addUndecided({"over-budget", {}, "no commit takes a change of some parameter"});
    return;
  }
  const LargestChange change = findLargestChange(proof.text().database());
  if (change.parm == nullptr) return;
  Work::begin();
  const std::string passed = limitPassedBy(change.extent);
  Work::begin(UINT64_MAX);
  const Subject* const subject = proof.text().find(change.parm->parm.name());
  if (passed.empty() || subject == nullptr) return;
  proof.add({"over-budget", placeOfName(*subject),
             "no commit takes a change of this parameter: " + passed});
}
