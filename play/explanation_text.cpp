#include "play/explanation_text.h"

#include <optional>

#include "database/explain.h"
#include "play/outcome.h"
#include "play/session_words.h"

namespace {

using Lines = std::vector<std::string>;

std::string shown(const Reason& reason) {
  std::string text = "line " + std::to_string(reason.line) + ", " + reason.statement;
  for (const UsedName& used : reason.names) {
    text += &used == &reason.names.front() ? "; " : ", ";
    text += spelledWord(used.name);
    text += used.value ? " is " + spelledWord(*used.value) : " is undefined";
  }
  return text;
}

// A sentence with its reasons: the first behind it, the others below.
void add(Lines& lines, const std::string& sentence, const std::vector<Reason>& reasons) {
  if (reasons.empty()) {
    lines.push_back(sentence);
    return;
  }
  for (const Reason& reason : reasons) {
    const bool isFirst = &reason == &reasons.front();
    lines.push_back((isFirst ? sentence + ": " : std::string("  and ")) + shown(reason));
  }
}

void add(Lines& lines, const std::string& sentence, const std::optional<Reason>& reason) {
  add(lines, sentence, reason ? std::vector{*reason} : std::vector<Reason>());
}

void addExistence(const Explanation& explanation, Lines& lines) {
  if (!explanation.exists) {
    const bool isOfIndex = !explanation.refusingIndex.empty();
    add(lines,
        isOfIndex ? "does not exist, by the index " + spelledWord(explanation.refusingIndex)
                  : "is not available",
        explanation.existence);
  } else if (!explanation.existence.empty()) {
    add(lines, "is available", explanation.existence);
  }
}

void addAccess(const Explanation& explanation, Lines& lines) {
  if (explanation.isReadOnly) {
    add(lines, "is read-only", explanation.readOnly);
  } else if (!explanation.readOnly.empty()) {
    add(lines, "is not read-only", explanation.readOnly);
  }
}

void addRange(const Explanation& explanation, Lines& lines) {
  const BoundsParm& range = explanation.range;
  const std::set<std::string>& texts = range.strings().texts();
  if (explanation.rangeResult != 0) {
    add(lines, "has no range (" + std::to_string(explanation.rangeResult) + ")", explanation.limit);
  } else if (!explanation.limit) {
    lines.emplace_back("may have any value");
  } else {
    add(lines,
        "has the range " + rangeText({{}, {texts.begin(), texts.end()}, range.integers().spans()}),
        explanation.limit);
  }
}

void addDefault(const Explanation& explanation, Lines& lines) {
  if (explanation.defaultDecider) {
    add(lines, "has the default " + spelledWord(explanation.defaultValue),
        explanation.defaultDecider);
  } else {
    lines.emplace_back("has no default");
  }
}

void addSteps(const ValueReasons& reasons, Lines& lines) {
  for (const ValueStep& step : reasons.steps) {
    lines.push_back("becomes " + spelledWord(step.value) + ": " + shown(step.reason));
  }
  if (reasons.acceptedBy) add(lines, "is accepted", reasons.acceptedBy);
}

// A default goes the way of any value: it may be replaced, or be cut.
void addStepsOfDefault(Transaction& transaction, const std::string& name,
                       const Explanation& explanation, Lines& lines) {
  if (!explanation.exists || !explanation.defaultDecider) return;
  ValueExplanation explained;
  static_cast<void>(explainValue(transaction.database(), transaction.staged(), name,
                                 explanation.defaultValue, true, explained));
  for (const ValueStep& step : explained.reasons.steps) {
    lines.push_back("becomes " + spelledWord(step.value) + " by a reset: " + shown(step.reason));
  }
}

const char* const NO_INSTANCE = "there is no such parameter, or not with so many index values";

}  // namespace

Lines explanationLines(Transaction& transaction, const std::string& name) {
  Explanation explanation;
  if (explain(transaction.database(), transaction.staged(), name, explanation) != EXPLAIN_DONE) {
    return {NO_INSTANCE};
  }
  Lines lines;
  std::string value;
  if (transaction.get(name, value) == 0) lines.push_back("is " + spelledWord(value));
  addExistence(explanation, lines);
  addAccess(explanation, lines);
  addRange(explanation, lines);
  addDefault(explanation, lines);
  addStepsOfDefault(transaction, name, explanation, lines);
  return lines;
}

Lines explanationLines(Transaction& transaction, const std::string& name,
                       const std::string& value) {
  ValueExplanation explained;
  const int result =
      explainValue(transaction.database(), transaction.staged(), name, value, false, explained);
  if (result != EXPLAIN_DONE) return {NO_INSTANCE};
  Lines lines;
  const std::vector<ValueStep>& steps = explained.reasons.steps;
  if (!transaction.validate(name, value)) {
    add(lines, "is refused, as no situation allows it",
        steps.empty() ? std::nullopt : std::optional(steps.front().reason));
    return lines;
  }
  addSteps(explained.reasons, lines);
  if (explained.code == SET_NOT_STORED || explained.code == SET_INVALID_INDEX) {
    lines.emplace_back(explained.code == SET_NOT_STORED ? "is passed over" : "makes a commit fail");
    Explanation explanation;
    static_cast<void>(explain(transaction.database(), transaction.staged(), name, explanation));
    addExistence(explanation, lines);
    if (explained.code == SET_NOT_STORED) addAccess(explanation, lines);
  } else if (explained.code < 0) {
    lines.emplace_back("is refused by the commit");
  } else if (lines.empty()) {
    lines.emplace_back("is accepted");
  }
  return lines;
}
