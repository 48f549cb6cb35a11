// save, restore and diff: values in files.
#include <algorithm>
#include <memory>
#include <nlohmann/json.hpp>
#include <set>

#include "ctl/service/bulk.h"
#include "ctl/service/exit_status.h"
#include "ctl/text/assignment.h"
#include "ctl/text/quoted.h"
#include "ctl/text/range_text.h"
#include "ctl/words/arguments.h"
#include "ctl/words/asked.h"
#include "ctl/words/commits.h"
#include "ctl/words/restoring.h"
#include "ctl/words/stored_values.h"
#include "ctl/words/values_file.h"
#include "ctl/words/word.h"

namespace {

struct FileArguments {
  std::string file;
  std::string other;
  bool isStatus = false;
  bool isDry = false;
  bool isStrict = false;
};

int save(Client& client, const FileArguments& arguments) {
  const StoredValues stored =
      storedValues(client.service, Levels(client.service), arguments.isStatus).value();
  const std::vector<Assignment>& values = stored.values;
  if (!stored.leftOut.empty()) complain("not saved: " + leftOutText(stored.leftOut));
  if (!arguments.file.empty()) {
    writeValuesFile(arguments.file, values);
    return STATUS_DONE;
  }
  if (client.out.isJson()) {
    Json json = Json::object();
    for (const Assignment& each : values) json[each.name] = each.value;
    client.out.json(json);
    return STATUS_DONE;
  }
  for (const Assignment& each : values) client.out.assignment(each.name, each.value);
  return STATUS_DONE;
}

// What differs between two sides, by name; no value where a side has no such name.
using Side = std::map<std::string, std::string>;
struct Difference {
  std::string name;
  std::optional<std::string> one;
  std::optional<std::string> other;
};

std::optional<std::string> valueIn(const Side& side, const std::string& name) {
  const auto found = side.find(name);
  return found == side.end() ? std::nullopt : std::optional(found->second);
}

std::vector<Difference> differences(const Side& one, const Side& other) {
  std::set<std::string> names;
  for (const auto& [name, value] : one) names.insert(name);
  for (const auto& [name, value] : other) names.insert(name);
  std::vector<Difference> all;
  for (const std::string& name : names) {
    Difference difference = {name, valueIn(one, name), valueIn(other, name)};
    const bool isSame =
        difference.one && difference.other && isSameValue(*difference.one, *difference.other);
    if (!isSame) all.push_back(std::move(difference));
  }
  return all;
}

Side sideOf(const std::vector<Assignment>& assignments) {
  Side side;
  for (const Assignment& each : assignments) side[each.name] = each.value;
  return side;
}

// The stored values of the same names, of those that exist.
Side storedOf(Client& client, const Side& file, Names& unknown) {
  Names names;
  for (const auto& [name, value] : file) names.push_back(name);
  Side side;
  if (names.empty()) return side;
  for (const InstanceState& state : client.service.states(COMMITTED, names)) {
    if (!state.is(STATE_KNOWN)) unknown.push_back(state.name);
    if (state.is(STATE_EXISTS)) side[state.name] = state.value;
  }
  return side;
}

Json jsonOf(const std::optional<std::string>& value) { return value ? Json(*value) : Json(); }

void show(const Output& out, const std::vector<Difference>& all) {
  if (out.isJson()) {
    Json json = Json::array();
    for (const Difference& each : all) {
      json.push_back(
          {{"name", each.name}, {"before", jsonOf(each.one)}, {"after", jsonOf(each.other)}});
    }
    return out.json(json);
  }
  const auto shown = [](const std::optional<std::string>& value) {
    return value ? quotedWord(*value) : std::string("(absent)");
  };
  for (const Difference& each : all) {
    out.line(out.style().name(quotedWord(each.name)) + ": " + shown(each.one) + " -> " +
             shown(each.other));
  }
}

int diff(Client& client, const FileArguments& arguments) {
  const Side one = sideOf(readValuesFile(arguments.file));
  Names unknown;
  const Side other = arguments.other.empty() ? storedOf(client, one, unknown)
                                             : sideOf(readValuesFile(arguments.other));
  const std::vector<Difference> all = differences(one, other);
  show(client.out, all);
  complainOfUnknown(client, unknown);
  if (!unknown.empty()) return STATUS_UNKNOWN;
  return all.empty() ? STATUS_DONE : STATUS_REFUSED;
}

// The states of the values that are staged. What others of them lock is stored before those, so it
// is staged here as the device does it.
std::vector<InstanceState> statesThen(Service& service, uint32_t trial,
                                      const std::vector<Assignment>& wanted,
                                      const std::vector<InstanceState>& now, bool isStatus) {
  std::vector<InstanceState> then = service.states(trial, namesOf(wanted));
  if (isStatus) return then;
  std::vector<Assignment> locked;
  for (size_t i = 0; i < wanted.size(); ++i) {
    if (wouldBeLocked(now[i], then[i])) locked.push_back(wanted[i]);
  }
  if (locked.empty()) return then;
  stageTaken(service, trial, locked, true);
  return service.states(trial, namesOf(wanted));
}

// What a restoration would change, each value judged where all others have been restored. Nothing
// is stored.
int showRestoration(Client& client, const Levels& levels, const std::vector<Assignment>& wanted,
                    const FileArguments& arguments) {
  const OwnTransaction trial(client.service);
  std::map<std::string, std::string> refused;  // why, by name
  for (const Refusal& each :
       stageValues(client.service, trial.id(), levels.known(wanted), arguments.isStatus)) {
    refused.emplace(each.name, each.why);
  }
  const Names names = namesOf(wanted);
  const std::vector<InstanceState> now = client.service.states(COMMITTED, names);
  const std::vector<InstanceState> then =
      statesThen(client.service, trial.id(), wanted, now, arguments.isStatus);
  const std::vector<std::string> values = translatedValues(client, wanted);
  std::vector<Difference> changes;
  Restored problems;
  for (size_t i = 0; i < wanted.size(); ++i) {
    if (!levels.has(names[i]) || !now[i].is(STATE_KNOWN)) {
      problems.unknown.push_back(names[i]);
    } else if (!then[i].is(STATE_EXISTS)) {
      problems.absent.push_back(names[i]);
    } else if (isSameValue(now[i].value, values[i])) {
      ++problems.count;
    } else if (const auto why = refused.find(names[i]); why != refused.end()) {
      problems.refused.push_back({names[i], refusalText(then[i], wanted[i].value, why->second)});
    } else if (!arguments.isStatus && !then[i].is(STATE_WRITABLE) &&
               !wouldBeLocked(now[i], then[i])) {
      problems.refused.push_back({names[i], "it is not writable"});
    } else {
      if (!isAllowed(then[i], values[i])) problems.cut.push_back({wanted[i], then[i]});
      changes.push_back({names[i], now[i].value, values[i]});
    }
  }
  show(client.out, changes);
  for (const CutValue& cut : problems.cut) {
    complain("would be cut: " + quotedWord(cut.wanted.name) + " = " + quotedWord(cut.wanted.value) +
             ", it takes " + rangeText(cut.stored));
  }
  for (const Refusal& refusal : problems.refused) {
    complain("would be refused: " + quotedWord(refusal.name) + ": " + refusal.why);
  }
  for (const std::string& name : problems.absent) {
    complain("absent: " + quotedWord(name) + " would not exist");
  }
  complainOfUnknown(client, problems.unknown);
  if (!problems.unknown.empty()) return STATUS_UNKNOWN;
  if (!problems.refused.empty() || !problems.absent.empty()) return STATUS_REFUSED;
  return arguments.isStrict && !problems.cut.empty() ? STATUS_CUT : STATUS_DONE;
}

int restore(Client& client, const FileArguments& arguments) {
  client.service.bus().doNotWait();  // others wait for this
  const std::vector<Assignment> wanted = readValuesFile(arguments.file);
  const Levels levels(client.service);
  if (arguments.isDry) return showRestoration(client, levels, wanted, arguments);
  const Restored restored = restoreByLevels(client.service, levels, wanted, arguments.isStatus);
  return tellReady(client, tellRestored(client, restored, "restored", arguments.isStrict));
}

}  // namespace

RunWord defineSave(CLI::App& word) {
  const auto arguments = std::make_shared<FileArguments>();
  addText(word, "FILE", arguments->file, "The file to be replaced; without it, standard output");
  word.add_flag("--status", arguments->isStatus, "Also what is read-only");
  return [arguments](Client& client) { return save(client, *arguments); };
}

RunWord defineRestore(CLI::App& word) {
  const auto arguments = std::make_shared<FileArguments>();
  addText(word, "FILE", arguments->file, "As of ostrelctl save; - is standard input")->required();
  word.add_flag("-n,--dry-run", arguments->isDry, "Only show what would change");
  word.add_flag("--status", arguments->isStatus, "As the device itself: also what is read-only");
  word.add_flag("--strict", arguments->isStrict, "End with status 4 where a value was cut");
  return [arguments](Client& client) { return restore(client, *arguments); };
}

RunWord defineDiff(CLI::App& word) {
  const auto arguments = std::make_shared<FileArguments>();
  addText(word, "FILE", arguments->file, "As of ostrelctl save")->required();
  addText(word, "OTHER", arguments->other, "Another one; without it, what is stored now");
  return [arguments](Client& client) { return diff(client, *arguments); };
}
