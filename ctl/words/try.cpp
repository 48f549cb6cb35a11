// try: what a commit would change, by level. Nothing is stored.
#include <algorithm>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>

#include "ctl/service/exit_status.h"
#include "ctl/text/assignment.h"
#include "ctl/text/quoted.h"
#include "ctl/text/sentences.h"
#include "ctl/words/arguments.h"
#include "ctl/words/asked.h"
#include "ctl/words/commits.h"
#include "ctl/words/levels.h"
#include "ctl/words/limit_changes.h"
#include "ctl/words/word.h"

namespace {

struct TryArguments {
  Texts texts;
  bool isStatus = false;
  bool isStrict = false;
};

// A line of the report.
struct Effect {
  uint32_t level = 0;
  std::string line;
  Json json;
};

// A value that is stored as it is asked for is its own cause.
std::string causeText(const std::string& name, const std::vector<std::string>& because) {
  const bool isAsked = std::ranges::find(because, name) != because.end();
  return isAsked || because.empty() ? "" : "because of " + namesText(because);
}

// Values that would be stored as other ones: what is asked for `before`, what is stored `after`.
using Cuts = std::vector<Change>;

// Where nothing changes, the committed value stays.
std::map<std::string, std::string> valuesAfter(Client& client, const Preview& preview,
                                               const std::vector<Assignment>& assignments) {
  std::map<std::string, std::string> values;
  for (const InstanceState& state : client.service.states(COMMITTED, namesOf(assignments))) {
    values[state.name] = state.value;
  }
  for (const Change& change : preview.changes) values[change.name] = change.after;
  return values;
}

// A preview says nothing of what is never announced.
bool isAnnounced(const Levels& levels, const std::string& name) {
  return levels.has(name) && levels.access(name) != "rostrict";
}

bool isRefused(const Preview& preview, const std::string& name) {
  return std::ranges::find(preview.refused, name, &Refusal::name) != preview.refused.end();
}

// What is stored and not announced.
std::vector<Assignment> findUntold(const Preview& preview,
                                   const std::vector<Assignment>& assignments,
                                   const Levels& levels) {
  std::vector<Assignment> untold = assignments;
  std::erase_if(untold, [&](const Assignment& each) {
    return isRefused(preview, each.name) || isAnnounced(levels, each.name);
  });
  return untold;
}

Cuts findCuts(Client& client, const Preview& preview, const std::vector<Assignment>& assignments,
              const Levels& levels) {
  const std::map<std::string, std::string> after = valuesAfter(client, preview, assignments);
  const std::vector<std::string> translated = translatedValues(client, assignments);
  Cuts cuts;
  for (size_t i = 0; i < assignments.size(); ++i) {
    const auto& [name, value] = assignments[i];
    if (isRefused(preview, name) || !isAnnounced(levels, name)) continue;
    if (!isSameValue(translated[i], after.at(name))) cuts.push_back({name, value, after.at(name)});
  }
  return cuts;
}

const Change* findCut(const Cuts& cuts, const std::string& name) {
  const auto found = std::ranges::find(cuts, name, &Change::name);
  return found == cuts.end() ? nullptr : &*found;
}

Effect effectOf(const Style& style, const Change& change, const Change* cut) {
  const std::string note = cut != nullptr ? "in place of " + quotedWord(cut->before)
                                          : causeText(change.name, change.because);
  Effect effect = {.line = changeLine(style, change), .json = changeJson(change)};
  if (change.before == change.after) {
    effect.line = style.name(quotedWord(change.name)) + " stays " + quotedWord(change.after);
  }
  if (!note.empty()) effect.line += " " + style.note("(" + note + ")");
  effect.json["because"] = change.because;
  if (cut != nullptr) effect.json["asked"] = cut->before;
  return effect;
}

Effect effectOf(const Style& style, const LimitChange& change) {
  const std::string& name = change.after.name;
  Effect effect = {.line = style.name(quotedWord(name)), .json = {{"name", name}}};
  const char* before = " ";
  for (const std::string& text : limitTexts(change)) {
    effect.line += before + text;
    before = " and ";
  }
  effect.line += " " + style.note("(" + causeText("", change.because) + ")");
  effect.json["exists"] = change.after.is(STATE_EXISTS);
  effect.json["writable"] = change.after.is(STATE_WRITABLE);
  effect.json["rangeBefore"] = rangeJson(change.before);
  effect.json["rangeAfter"] = rangeJson(change.after);
  effect.json["because"] = change.because;
  return effect;
}

class TryReport {
 public:
  TryReport(Client& client, const Levels& levels) : client_(client), levels_(levels) {}

  void add(const std::vector<Change>& changes, const Cuts& cuts) {
    Names shown;
    for (const Change& change : changes) {
      if (change.before != change.after) add(change, findCut(cuts, change.name), shown);
    }
    for (const Change& cut : cuts) {
      if (std::ranges::find(shown, cut.name) != shown.end()) continue;
      add({cut.name, cut.after, cut.after, {cut.name}}, &cut, shown);
    }
  }
  void add(const std::vector<LimitChange>& changes) {
    for (const LimitChange& change : changes) {
      // What the device itself sets has no limits that anybody chooses in.
      if (!client_.out.isJson() && !levels_.canBeSet(change.after.name)) continue;
      add(limits_, change.after.name, effectOf(client_.out.style(), change));
    }
  }

  void print(const Preview& preview) const {
    if (client_.out.isJson()) return client_.out.json(json(preview));
    std::vector<Effect> all = changes_;
    all.insert(all.end(), limits_.begin(), limits_.end());
    std::ranges::stable_sort(all, {}, &Effect::level);
    std::optional<uint32_t> level;
    for (const Effect& effect : all) {
      if (level != effect.level) {
        client_.out.line(client_.out.style().heading("level " + std::to_string(effect.level)));
      }
      level = effect.level;
      client_.out.line("  " + effect.line);
    }
  }

 private:
  void add(const Change& change, const Change* cut, Names& shown) {
    add(changes_, change.name, effectOf(client_.out.style(), change, cut));
    shown.push_back(change.name);
  }
  void add(std::vector<Effect>& effects, const std::string& name, Effect effect) {
    effect.level = levels_.has(name) ? levels_.of(name) : 0;
    effect.json["level"] = effect.level;
    effects.push_back(std::move(effect));
  }

  [[nodiscard]] Json json(const Preview& preview) const {
    Json json = {{"changes", Json::array()}, {"limits", Json::array()}, {"refused", Json::array()}};
    for (const Effect& effect : changes_) json["changes"].push_back(effect.json);
    for (const Effect& effect : limits_) json["limits"].push_back(effect.json);
    for (const auto& list : {preview.refused, preview.failing}) {
      for (const Refusal& refusal : list) {
        json["refused"].push_back({{"name", refusal.name}, {"why", refusal.why}});
      }
    }
    return json;
  }

  Client& client_;
  const Levels& levels_;
  std::vector<Effect> changes_;
  std::vector<Effect> limits_;
};

int tryCommit(Client& client, const TryArguments& arguments) {
  const std::vector<Assignment> assignments = assignmentsOf(arguments.texts);
  const OwnTransaction transaction(client.service);
  stage(client, transaction.id(), assignments, arguments.isStatus);
  const Preview preview = client.service.preview(transaction.id());
  const Levels levels(client.service);
  const Cuts cuts = findCuts(client, preview, assignments, levels);
  TryReport report(client, levels);
  report.add(preview.changes, cuts);
  report.add(limitChanges(client, preview.changes, findUntold(preview, assignments, levels)));
  report.print(preview);
  const int status = complainOfRefusals(client, preview.refused);
  for (const Refusal& each : preview.failing) {
    complain("the commit would fail: " + failureSentence(each));
  }
  if (status != STATUS_DONE) return status;
  if (!preview.failing.empty()) return STATUS_REFUSED;
  return arguments.isStrict && !cuts.empty() ? STATUS_CUT : STATUS_DONE;
}

}  // namespace

RunWord defineTry(CLI::App& word) {
  const auto arguments = std::make_shared<TryArguments>();
  addTexts(word, "NAME=VALUE", arguments->texts, "Parameters with their values");
  word.add_flag("--status", arguments->isStatus, "As the device itself: also what is read-only");
  word.add_flag("--strict", arguments->isStrict, "End with status 4 where a value would be cut");
  return [arguments](Client& client) { return tryCommit(client, *arguments); };
}
