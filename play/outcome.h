// Outcomes: what an operation gave, as it is written behind an arrow, and whether it is as
// expected.
#pragma once

#include <string>
#include <vector>

#include "play/device.h"
#include "play/operation_words.h"

/// What an operation gave.
struct Outcome {
  std::string text = {};  ///< of a refusal, what was announced all the same
  bool isRefusal = false;
  std::string reason = {};                ///< of a refusal
  std::string error = {};                 ///< of a refusal: the whole text of the error
  bool hasRanges = false;                 ///< whether quotes tell a text from a number
  std::vector<std::string> changes = {};  ///< "name=value", where the text is made of them
  std::vector<std::string> notes = {};    ///< what a person wants to know of it

  /// As it is behind an arrow: a refusal is "refused: " and the reason, behind the text. Empty
  /// where there is nothing to say.
  [[nodiscard]] std::string shown() const;
};

/// The spans and texts of a range, as they are behind an arrow.
std::string rangeText(const NamedRange& range);

/// The outcome of `word`, which was answered with `answer`.
Outcome outcomeOf(const OperationWord& word, const Answer& answer);

/// A word of an expectation, whose variables have their values.
struct ExpectedWord {
  std::string text;
  bool isQuoted = false;
};

/// What is expected of an operation.
struct ExpectedOutcome {
  std::vector<ExpectedWord> words = {};
  bool isRefusal = false;
  std::vector<ExpectedWord> reason = {};
};

/// Whether `outcome` is as expected, word for word. Of a refusal the whole text of the error will
/// do as well.
bool isExpected(const Outcome& outcome, const ExpectedOutcome& expected);
