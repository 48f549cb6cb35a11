#include "ctl/words/commit_and_tell.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "ctl/service/exit_status.h"
#include "ctl/text/assignment.h"
#include "ctl/text/quoted.h"
#include "ctl/text/range_text.h"
#include "ctl/text/sentences.h"
#include "ctl/words/asked.h"
#include "ctl/words/commits.h"

namespace {

// What became of a wanted value.
struct Stored {
  InstanceState state;
  std::optional<std::string> asked;
  std::string note = {};  // empty where the value is what was asked for
  bool isCut = false;
  uint32_t line = 0;  // of the limits that cut it
};

// Asks why the values are not those that were asked for.
void explainDifferences(Client& client, std::vector<Stored>& all) {
  std::vector<Stored*> different;
  Names names;
  std::vector<Assignment> assignments;
  for (Stored& stored : all) {
    if (!stored.asked || isSameValue(*stored.asked, stored.state.value)) continue;
    different.push_back(&stored);
    names.push_back(stored.state.name);
    assignments.push_back({stored.state.name, *stored.asked});
  }
  if (different.empty()) return;
  const auto reasons = client.service.explain(COMMITTED, names);
  const std::vector<std::string> translated = translatedValues(client, assignments);
  for (size_t i = 0; i < different.size(); ++i) {
    Stored& stored = *different[i];
    stored.note = cutText(*stored.asked, translated[i], stored.state, reasons[i]);
    stored.isCut = !isSameValue(translated[i], stored.state.value);
    const std::vector<Reason> limits = answersTo(reasons[i], "limits");
    if (!limits.empty()) stored.line = limits.front().line;
  }
}

std::vector<Stored> storedValues(Client& client, const std::vector<Wanted>& wanted) {
  Names names;
  for (const Wanted& each : wanted) names.push_back(each.name);
  const std::vector<InstanceState> states = client.service.states(COMMITTED, names);
  std::vector<Stored> all;
  for (size_t i = 0; i < wanted.size(); ++i) {
    all.push_back({.state = states[i], .asked = wanted[i].value});
  }
  explainDifferences(client, all);
  return all;
}

std::string lineOf(const Style& style, const std::string& name, const std::string& value,
                   const std::string& note) {
  return style.name(quotedWord(name)) + " = " + quotedWord(value) +
         (note.empty() ? "" : " " + style.note("(" + note + ")"));
}

Json jsonOf(const Stored& stored) {
  Json json = {{"name", stored.state.name}, {"value", stored.state.value}};
  if (stored.asked) json["asked"] = *stored.asked;
  json["cut"] = stored.isCut;
  if (stored.isCut) {
    json["range"] = rangeJson(stored.state);
    json["line"] = stored.line;
  }
  return json;
}

Json jsonOf(const Change& change) {
  Json json = changeJson(change);
  json["because"] = change.because;
  return json;
}

bool isAmong(const std::vector<Wanted>& wanted, const Change& change) {
  return std::ranges::find(wanted, change.name, &Wanted::name) != wanted.end();
}

void tell(const Output& out, const std::vector<Stored>& stored,
          const std::vector<Change>& followers, bool onlyCut) {
  if (out.isJson()) {
    Json json = {{"stored", Json::array()}, {"followed", Json::array()}};
    for (const Stored& each : stored) json["stored"].push_back(jsonOf(each));
    for (const Change& each : followers) json["followed"].push_back(jsonOf(each));
    return out.json(json);
  }
  for (const Stored& each : stored) {
    if (onlyCut && !each.isCut) continue;
    if (out.form() == FORM_NULL) {
      out.assignment(each.state.name, each.state.value);
    } else {
      out.line(lineOf(out.style(), each.state.name, each.state.value, each.note));
    }
  }
  if (onlyCut || out.form() == FORM_NULL) return;
  for (const Change& each : followers) out.line(followerLine(out.style(), each));
}

}  // namespace

std::vector<Wanted> wantedOf(const std::vector<Assignment>& assignments) {
  std::vector<Wanted> wanted;
  wanted.reserve(assignments.size());
  for (const Assignment& each : assignments) wanted.push_back({each.name, each.value});
  return wanted;
}

std::string followerLine(const Style& style, const Change& change) {
  std::string note = "was " + quotedWord(change.before);
  if (!change.because.empty()) note += ", because of " + namesText(change.because);
  return lineOf(style, change.name, change.after, note);
}

int commitAndTell(Client& client, uint32_t transaction, const std::vector<Wanted>& wanted,
                  const TellOptions& options) {
  const Preview preview = previewAccepted(client, transaction);
  const std::optional<std::string> failure = client.service.commit(transaction);
  if (failure) {
    complain(*failure);
    for (const Refusal& each : preview.failing) complain(failureSentence(each));
  }
  const std::vector<Stored> stored = storedValues(client, wanted);
  std::vector<Change> followers;
  for (const Change& change : preview.changes) {
    if (!isAmong(wanted, change) && change.before != change.after) followers.push_back(change);
  }
  tell(client.out, stored, followers, options.onlyCut);
  if (failure) return STATUS_REFUSED;
  return options.isStrict && std::ranges::any_of(stored, &Stored::isCut) ? STATUS_CUT : STATUS_DONE;
}
