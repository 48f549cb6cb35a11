// why: why a parameter is as it is, what becomes of a value, and what would have to change.
#include <algorithm>
#include <memory>
#include <nlohmann/json.hpp>

#include "ctl/service/exit_status.h"
#include "ctl/text/assignment.h"
#include "ctl/text/quoted.h"
#include "ctl/text/range_text.h"
#include "ctl/text/sentences.h"
#include "ctl/words/arguments.h"
#include "ctl/words/asked.h"
#include "ctl/words/commits.h"
#include "ctl/words/unlock.h"
#include "ctl/words/word.h"

namespace {

constexpr size_t MOST_SHOWN = 3;

// All that is said of one argument.
// NOLINTNEXTLINE(bugprone-exception-escape): moving the library's values raises nothing.
struct Answer {
  std::vector<std::string> lines;
  Json json;
};

// What becomes of a value.
struct Verdict {
  std::string value;  // as translated, where it is wanted in vain
  std::string sentence = {};
  bool isStored = false;
  bool isHopeless = false;  // in every situation
};

Json jsonOf(const Reason& reason) {
  Json names = Json::object();
  for (const Assignment& used : reason.names) names[used.name] = used.value;
  return {{"question", reason.question},
          {"answer", reason.answer},
          {"line", reason.line},
          {"statement", reason.statement},
          {"names", names}};
}

Json jsonOf(const Unlock& unlock) {
  Json json = {{"set", Json::object()}, {"effects", Json::array()}};
  for (const Assignment& change : unlock.changes) json["set"][change.name] = change.value;
  for (const Change& effect : unlock.effects) json["effects"].push_back(changeJson(effect));
  return json;
}

std::string setCommand(const Client& client, const std::vector<Assignment>& changes) {
  std::string command = client.program + " set";
  for (const Assignment& change : changes) {
    command += " " + shellWord(change.name + "=" + change.value);
  }
  return command;
}

// A line of its own, so that the one with the command can be pasted. That the parameter itself
// changes is what was wanted.
void addEffects(const std::vector<Change>& effects, const UnlockGoal& goal, Answer& answer) {
  Names names;
  for (const Change& effect : effects) {
    if (!goal.value || effect.name != goal.name) names.push_back(effect.name);
  }
  if (names.empty()) return;
  answer.lines.push_back("  this also changes " + namesText(names, MOST_SHOWN));
}

std::string commandsOf(const Client& client, const Unlock& unlock) {
  std::string commands;
  for (const std::vector<Assignment>& commit : unlock.commits) {
    commands += (commands.empty() ? "" : " && ") + setCommand(client, commit);
  }
  return commands;
}

// Not everything is tried: that none was found is all that can be said.
std::string noUnlockText(size_t tried) {
  if (tried == 0) return "no parameter that a client can set changes that";
  return "no change of one or two parameters that makes it possible was found in " +
         std::to_string(tried) + (tried == 1 ? " trial" : " trials");
}

void addUnlocks(Client& client, const UnlockGoal& goal, const std::vector<Reason>& reasons,
                Answer& answer) {
  const UnlockSearch search = findUnlocks(client, goal, reasons);
  answer.json["unlocks"] = Json::array();
  answer.json["tried"] = search.tried;
  if (search.found.empty()) answer.lines.push_back(noUnlockText(search.tried));
  const char* start = goal.value ? "to have it stored: " : "to make it writable: ";
  for (size_t i = 0; i < search.found.size(); ++i) {
    answer.json["unlocks"].push_back(jsonOf(search.found[i]));
    if (i >= MOST_SHOWN) continue;
    answer.lines.push_back(start + commandsOf(client, search.found[i]));
    addEffects(search.found[i].effects, goal, answer);
    start = "or: ";
  }
}

void addState(const InstanceState& state, const std::vector<Reason>& reasons, Answer& answer) {
  answer.json = {{"name", state.name},
                 {"value", state.value},
                 {"exists", state.is(STATE_EXISTS)},
                 {"writable", state.is(STATE_WRITABLE)},
                 {"range", rangeJson(state)},
                 {"reasons", Json::array()}};
  for (const Reason& reason : reasons) answer.json["reasons"].push_back(jsonOf(reason));
  answer.lines = reasonLines(state, reasons);
}

// What a commit would do with the value in the present situation.
Verdict judge(Client& client, const Assignment& wanted, const InstanceState& state) {
  Verdict verdict = {.value = translatedValues(client, {wanted}).front()};
  const std::string shown = quotedWord(wanted.value);
  const OwnTransaction transaction(client.service);
  if (!client.service.set(transaction.id(), {wanted}, false).empty()) {
    verdict.isHopeless = true;
    verdict.sentence = shown + " is refused in every situation";
    return verdict;
  }
  const Preview preview = client.service.preview(transaction.id());
  if (!preview.refused.empty()) {
    verdict.sentence = shown + " would be refused";
    return verdict;
  }
  if (!preview.failing.empty()) {
    verdict.sentence =
        shown + " would make the commit fail: " + failureSentence(preview.failing.front());
    return verdict;
  }
  const auto own = std::ranges::find(preview.changes, wanted.name, &Change::name);
  const std::string after = own == preview.changes.end() ? state.value : own->after;
  verdict.isStored = isSameValue(verdict.value, after);
  verdict.sentence = shown + (isSameValue(wanted.value, after) ? " would be stored"
                              : verdict.isStored ? " would be stored as " + quotedWord(after)
                                                 : " would be cut to " + quotedWord(after));
  return verdict;
}

Answer why(Client& client, const InstanceState& state, const std::vector<Reason>& reasons,
           const std::optional<std::string>& value) {
  Answer answer;
  addState(state, reasons, answer);
  if (!value) {
    if (!state.is(STATE_WRITABLE)) addUnlocks(client, {state.name, {}}, reasons, answer);
    return answer;
  }
  const Verdict verdict = judge(client, {state.name, *value}, state);
  answer.lines.insert(answer.lines.begin() + 1, verdict.sentence);
  answer.json["asked"] = *value;
  answer.json["stored"] = verdict.isStored;
  if (verdict.isStored || verdict.isHopeless) return answer;
  addUnlocks(client, {state.name, verdict.value}, reasons, answer);
  return answer;
}

int whyAll(Client& client, const Texts& texts) {
  std::vector<Assignment> asked;
  std::vector<bool> hasValue;
  Names names;
  for (const std::string& text : texts) {
    const std::optional<Assignment> assignment = assignmentOf(text);
    hasValue.push_back(assignment.has_value());
    asked.push_back(assignment.value_or(Assignment{text, {}}));
    names.push_back(asked.back().name);
  }
  const std::vector<InstanceState> states = client.service.states(COMMITTED, names);
  const auto reasons = client.service.explain(COMMITTED, names);
  Names unknown;
  Json json = Json::array();
  for (size_t i = 0; i < names.size(); ++i) {
    if (reasons[i].empty()) {
      unknown.push_back(names[i]);
      continue;
    }
    const Answer answer = why(client, states[i], reasons[i],
                              hasValue[i] ? std::optional(asked[i].value) : std::nullopt);
    json.push_back(answer.json);
    if (client.out.isJson()) continue;
    if (i > 0) client.out.line("");
    for (const std::string& line : answer.lines) client.out.line(line);
  }
  if (client.out.isJson()) client.out.json(json);
  complainOfUnknown(client, unknown);
  return unknown.empty() ? STATUS_DONE : STATUS_UNKNOWN;
}

}  // namespace

RunWord defineWhy(CLI::App& word) {
  const auto texts = std::make_shared<Texts>();
  addTexts(word, "NAME[=VALUE]", *texts, "A parameter, or a value for it");
  return [texts](Client& client) { return whyAll(client, *texts); };
}
