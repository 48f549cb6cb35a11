#include "ctl/text/sentences.h"

#include "ctl/text/assignment.h"
#include "ctl/text/quoted.h"
#include "ctl/text/range_text.h"

namespace {

// A sentence with its reasons: the first behind it, the others below.
void add(std::vector<std::string>& lines, const std::string& sentence,
         const std::vector<Reason>& reasons) {
  std::string line = sentence;
  const char* before = ": ";
  for (const Reason& reason : reasons) {
    const std::string statement = statementText(reason);
    if (statement.empty()) continue;
    lines.push_back(std::string(line).append(before).append(statement));
    line = "  and ";
    before = "";
  }
  if (*before != '\0') lines.push_back(line);
}

bool isDecided(const std::vector<Reason>& reasons) {
  return !reasons.empty() && reasons.front().line != 0;
}

bool saysNo(const std::vector<Reason>& reasons) {
  return !reasons.empty() && reasons.front().answer == "no";
}

}  // namespace

std::vector<Reason> answersTo(const std::vector<Reason>& reasons, const std::string& question) {
  std::vector<Reason> answers;
  for (const Reason& reason : reasons) {
    if (reason.question == question) answers.push_back(reason);
  }
  return answers;
}

std::string statementText(const Reason& reason) {
  if (reason.line == 0) return {};
  std::string text = "line " + std::to_string(reason.line) + ", " + printableText(reason.statement);
  const char* before = ", where ";
  for (const Assignment& used : reason.names) {
    text += before + quotedWord(used.name) + " is " + quotedWord(used.value);
    before = " and ";
  }
  return text;
}

std::string namesText(const std::vector<std::string>& names, size_t most) {
  std::vector<std::string> shown;
  for (const std::string& name : names) {
    if (shown.size() < most) shown.push_back(quotedWord(name));
  }
  if (names.size() > most) shown.push_back(std::to_string(names.size() - most) + " more");
  std::string text;
  for (size_t i = 0; i < shown.size(); ++i) {
    if (i > 0) text += i + 1 == shown.size() ? " and " : ", ";
    text += shown[i];
  }
  return text;
}

std::vector<std::string> reasonLines(const InstanceState& state,
                                     const std::vector<Reason>& reasons) {
  std::vector<std::string> lines = {quotedWord(state.name) + " is " + quotedWord(state.value)};
  const std::vector<Reason> exists = answersTo(reasons, "exists");
  if (saysNo(exists)) {
    add(lines, "it does not exist now", exists);
    return lines;
  }
  if (isDecided(exists)) add(lines, "it exists", exists);
  const std::vector<Reason> writable = answersTo(reasons, "writable");
  if (saysNo(writable)) {
    add(lines, "it cannot be written now", writable);
  } else {
    add(lines, "it can be written", writable);
  }
  const std::vector<Reason> limits = answersTo(reasons, "limits");
  if (state.is(STATE_NO_LIMITS)) {
    add(lines, "what it takes cannot be computed now", limits);
  } else {
    add(lines, "it takes " + rangeText(state), limits);
  }
  const std::vector<Reason> defaults = answersTo(reasons, "default");
  if (isDecided(defaults)) {
    add(lines, "its default is " + quotedWord(defaults.front().answer), defaults);
  } else {
    lines.emplace_back("it has no default");
  }
  return lines;
}

std::string cutText(const std::string& asked, const std::string& translated,
                    const InstanceState& stored, const std::vector<Reason>& reasons) {
  if (isSameValue(asked, stored.value)) return {};
  if (isSameValue(translated, stored.value)) return "translated from " + quotedWord(asked);
  const std::vector<Reason> limits = answersTo(reasons, "limits");
  std::string text = "cut from " + quotedWord(asked) + ": " + rangeText(stored);
  if (isDecided(limits)) text += ", line " + std::to_string(limits.front().line);
  return text;
}
