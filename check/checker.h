// The checker: all that can be said about a text.
#pragma once

#include <vector>

#include "check/findings.h"
#include "check/source_text.h"
#include "check/variant.h"

/// What is asked of the checker.
struct CheckOptions {
  ConstantChoices constants;
  bool proofs = true;  ///< whether to ask what happens in all situations
};

/// What it found.
struct CheckReport {
  std::vector<Finding> findings;   ///< in the order of the text
  std::vector<Finding> allowed;    ///< those that a comment of the text allows, in the same order
  std::vector<Finding> undecided;  ///< questions that no proof and no example decided
};

/// Checks one text in all variants. A finding that not all of them have names one that has it.
CheckReport checkText(const SourceText& source, const CheckOptions& options);
