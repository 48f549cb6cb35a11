// Outcomes: what an operation gave, as it is written behind an arrow, and whether it is as
// expected.
#pragma once

#include <string>
#include <vector>

#include "play/device.h"
#include "play/operation_words.h"

/// What an operation gave.
struct Outcome {
  bool isRefusal = false;
  /// Behind the arrow, a refusal's reason without "refused:"; empty where there is nothing to say.
  std::string text = {};
  std::string error = {};  ///< of a refusal, the whole text of the error
  bool hasRanges = false;  ///< whether quotes tell a text from a number

  /// With "refused: " before a refusal.
  [[nodiscard]] std::string shown() const { return isRefusal ? "refused: " + text : text; }
};

/// The outcome of `word`, which was answered with `answer`, and announced `changes`.
Outcome outcomeOf(const OperationWord& word, const Answer& answer,
                  const std::vector<std::string>& changes);

/// A word of an expectation, whose variables have their values.
struct ExpectedWord {
  std::string text;
  bool isQuoted = false;
};

/// Whether `outcome` is what is expected: a refusal or not, and in words the same. Of a refusal the
/// whole text of the error will do as well.
bool isExpected(const Outcome& outcome, bool isRefusal, const std::vector<ExpectedWord>& words);
