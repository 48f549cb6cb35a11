#include "play/outcome.h"

#include <algorithm>
#include <string_view>

#include "base/number.h"
#include "play/session_words.h"

namespace {

void addWord(std::string& line, const std::string& word) {
  if (!line.empty()) line += ' ';
  line += word;
}

std::string spanText(const Span& span) {
  const std::string low = numberText(span.first);
  return span.first == span.second ? low : low + ".." + numberText(span.second);
}

// Why the method refused: of "Set failed because of REASON" the reason, where the text is one of
// the operation's own and not of a commit within it.
std::string reasonOf(std::string_view family, std::string_view error) {
  for (const std::string_view kind : {"", " bulk"}) {
    const std::string start = std::string(family).append(kind).append(" failed because ");
    if (!error.starts_with(start)) continue;
    error.remove_prefix(start.size());
    return std::string(error.starts_with("of ") ? error.substr(3) : error);
  }
  return std::string(error);
}

std::string textOf(const OperationWord& word, const Answer& answer) {
  std::string line;
  switch (word.outcome) {
    case OUTCOME_NONE:
      break;
    case OUTCOME_VALUES:
      for (const std::string& text : answer.texts) addWord(line, spelledWord(text));
      break;
    case OUTCOME_VALID:
      return !answer.error.empty() ? "" : answer.isValid ? "true" : "false";
    case OUTCOME_RANGES:
      for (const NamedRange& range : answer.ranges) {
        if (!range.name.empty()) addWord(line, spelledWord(range.name) + ":");
        if (!range.isOpen()) addWord(line, rangeText(range));
      }
      break;
    case OUTCOME_CHANGES:
      for (const std::string& change : answer.changes) addWord(line, spelledChange(change));
      break;
  }
  return line;
}

std::vector<ExpectedWord> wordsOf(const std::string& text) {
  std::vector<SessionWord> words;
  // What this program has written itself can be read.
  static_cast<void>(readSessionWords(text, words));
  std::vector<ExpectedWord> result;
  result.reserve(words.size());
  for (const SessionWord& word : words) result.push_back({word.text(), word.isQuoted()});
  return result;
}

bool isNumeric(const std::string& text) {
  return !text.empty() && text.find_first_not_of("-.0123456789") == std::string::npos;
}

}  // namespace

std::string rangeText(const NamedRange& range) {
  std::string line;
  for (const Span& span : range.spans) addWord(line, spanText(span));
  for (const std::string& text : range.texts) addWord(line, quotedWord(text));
  return line;
}

std::string Outcome::shown() const {
  std::string line = text;
  if (isRefusal) addWord(line, "refused: " + reason);
  return line;
}

Outcome outcomeOf(const OperationWord& word, const Answer& answer) {
  Outcome outcome = {.text = textOf(word, answer)};
  outcome.hasRanges = word.outcome == OUTCOME_RANGES;
  outcome.isRefusal = !answer.error.empty();
  outcome.error = answer.error;
  outcome.changes = answer.changes;
  outcome.notes = answer.notes;
  if (outcome.isRefusal) outcome.reason = reasonOf(word.family, answer.error);
  return outcome;
}

bool isExpected(const Outcome& outcome, const ExpectedOutcome& expected) {
  const auto areSame = [&](const ExpectedWord& a, const ExpectedWord& b) {
    const bool mustBeQuotedAlike = outcome.hasRanges && isNumeric(a.text);
    return a.text == b.text && (!mustBeQuotedAlike || a.isQuoted == b.isQuoted);
  };
  const auto haveSameText = [](const ExpectedWord& a, const ExpectedWord& b) {
    return a.text == b.text;
  };
  if (outcome.isRefusal != expected.isRefusal) return false;
  if (!std::ranges::equal(wordsOf(outcome.text), expected.words, areSame)) return false;
  return !outcome.isRefusal ||
         std::ranges::equal(wordsOf(outcome.reason), expected.reason, haveSameText) ||
         std::ranges::equal(wordsOf(outcome.error), expected.reason, haveSameText);
}
