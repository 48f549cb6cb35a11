// Ambiguity: two ranges of one value each that count together, so that a parameter nobody sets
// keeps what it came with.
#pragma once

#include <span>
#include <string>

#include "check/proof/proof.h"

/// A range of one value, with a condition.
struct DerivedRange {
  const CompiledStatement* statement;
  std::string value;
};

/// Tells of the first two of `ranges`, all that count in `subject`, that give different values in a
/// healthy situation, where the engine was seen to keep either one. What may be meant to be held on
/// to is left alone: a value that two ranges give, and limits of the same names, as those of a
/// hysteresis.
void askAmbiguity(Proof& proof, const Subject& subject, std::span<const DerivedRange> ranges);
