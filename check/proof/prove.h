// Proofs: what holds of a text in all situations.
#pragma once

#include "check/proof/deadline.h"
#include "check/proof/proof_memory.h"
#include "check/static/explained_places.h"
#include "check/text/checked_text.h"

/// Forgets what was found out about the text before: to be called before the first variant.
void beginProofs();

/// How much is asked.
struct ProofLimits {
  Deadline deadline = {};  ///< the questions that are left then are not asked, and so undecided
  /// Of so many parts of all questions, which together find what one part of one finds, ...
  size_t parts = 1;
  size_t part = 0;  ///< ... the one that is asked, from 0
  /// What other variants of the text have found, and what this one finds; may be null. It is kept
  /// of definitions, not of the text as a whole.
  ProofMemory* memory = nullptr;
};

/// Asks all questions about the definitions of a text that the engine has built, but of expressions
/// that `explained` says enough of. What is found goes to `findings`, and what could be neither
/// shown nor ruled out to `undecided`. The values of the database are unset afterwards.
void prove(const CheckedText& checked, const ExplainedPlaces& explained, const ProofLimits& limits,
           Findings& findings, Findings& undecided);
