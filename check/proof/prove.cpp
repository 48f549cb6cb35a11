#include "check/proof/prove.h"

#include "check/proof/questions.h"
#include "check/proof/solver.h"

void beginProofs() { SolverQuestion::forgetAnswers(); }

void prove(const CheckedText& checked, const ExplainedPlaces& explainedPlaces,
           const ProofLimits& limits, Findings& findings, Findings& undecided) {
  Proof proof(checked, limits, findings, undecided);
  Explained explained(explainedPlaces, proof.text(), findings);
  askConditions(proof, explained);
  askControls(proof, explained);
  askReachability(proof, explained);
  askComparisons(proof, explained);
  askValues(proof, explained);
  askCoverage(proof, explained);
  askRefusals(proof, explained);
  askDocumented(proof, explained);
  askDefaults(proof, explained);
  askIndices(proof, explained);
  askOverflow(proof, explained);
  askFollowers(proof);
  askRings(proof, explained);
  proof.keepResults();
  if (!proof.asksOfWhole()) return;
  if (proof.text().isWhole()) askBudget(proof);
  askStart(proof, explained);
}
