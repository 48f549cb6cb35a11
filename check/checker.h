// The checker: all that can be said about a text.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "check/text/findings.h"
#include "check/text/source_text.h"
#include "check/text/variant.h"

/// What is asked of the checker.
struct CheckOptions {
  ConstantChoices constants;
  bool proofs = true;  ///< whether to ask what happens in all situations
  /// After so many seconds the remaining proofs of a text are left undecided; no value: never.
  std::optional<uint32_t> maxSeconds = {};
  /// How many processes may check variants, or parts of them, at once, from 1. What is found does
  /// not depend on it.
  uint32_t jobs = 1;
};

/// What it found.
struct CheckReport {
  std::vector<Finding> findings;   ///< in the order of the text
  std::vector<Finding> allowed;    ///< those that a comment of the text allows, in the same order
  std::vector<Finding> undecided;  ///< questions that no proof and no example decided
  std::string failure = {};        ///< why the text could not be checked, else empty
};

/// Checks one text in all variants. A finding that not all of them have names one that has it.
CheckReport checkText(const SourceText& source, const CheckOptions& options);
