#include "ctl/words/asked.h"

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <map>

#include "ctl/service/exit_status.h"
#include "ctl/text/assignment.h"
#include "ctl/text/quoted.h"
#include "ctl/text/range_text.h"
#include "ctl/text/sentences.h"
#include "ctl/text/suggestion.h"

namespace {

// Parts of the service's texts.
constexpr std::string_view INVALID_VALUE = "parameter value is invalid";
constexpr std::string_view WRONG_INDEX_COUNT = "there is no instance with so many index values";

constexpr std::string_view VALUE_REFUSED = "its value is refused";

constexpr size_t MOST_COMPLAINTS = 10;

bool contains(std::string_view text, std::string_view part) {
  return text.find(part) != std::string_view::npos;
}

// The instances that fit the pattern, in the order of names.
Names fittingInstances(Client& client, uint32_t transaction, const std::string& pattern) {
  Names bases;
  for (const ListedParameter& listed : client.service.list("")) {
    const bool mayFit = pattern.find('[') == std::string::npos ||
                        fitsPattern(std::string(baseOf(pattern)), listed.name);
    if (!listed.isIndex() && mayFit) bases.push_back(listed.name);
  }
  Names fitting;
  if (bases.empty()) return fitting;
  for (std::string& name : client.service.instances(transaction, bases)) {
    if (fitsPattern(pattern, name)) fitting.push_back(std::move(name));
  }
  return fitting;
}

// Replaces the patterns by what they fit.
Names withoutPatterns(Client& client, uint32_t transaction, const Names& asked, AskedStates& out) {
  Names names;
  for (const std::string& name : asked) {
    if (!isNamePattern(name)) {
      names.push_back(name);
      continue;
    }
    out.isList = true;
    const Names fitting = fittingInstances(client, transaction, name);
    if (fitting.empty()) out.unknown.push_back(name);
    names.insert(names.end(), fitting.begin(), fitting.end());
  }
  return names;
}

// How many indices the parameters have that fit the pattern.
std::map<std::string, size_t, std::less<>> indexCounts(Client& client, const std::string& pattern) {
  std::map<std::string, size_t, std::less<>> counts;
  for (const ListedParameter& listed : client.service.list(pattern)) {
    counts.emplace(listed.name, listed.indices.size());
  }
  return counts;
}

// Replaces base names by their instances, and takes out what cannot be an instance.
void resolveAbsent(Client& client, uint32_t transaction, AskedStates& out) {
  const auto isThere = [](const InstanceState& state) { return state.is(STATE_EXISTS); };
  if (std::ranges::all_of(out.states, isThere)) return;
  const auto counts = indexCounts(client, "");
  std::vector<InstanceState> states;
  for (InstanceState& state : out.states) {
    const auto parameter = counts.find(baseOf(state.name));
    const size_t given = indexCountOf(state.name);
    if (isThere(state) || (parameter != counts.end() && parameter->second == given)) {
      states.push_back(std::move(state));
    } else if (given != 0 || parameter == counts.end()) {
      out.unknown.push_back(state.name);
    } else {
      out.isList = true;
      const Names names = client.service.instances(transaction, {state.name});
      for (InstanceState& each : client.service.states(transaction, names)) {
        states.push_back(std::move(each));
      }
    }
  }
  out.states = std::move(states);
}

// Whether there can be such an instance.
bool isInstance(Client& client, const std::string& name) {
  const auto counts = indexCounts(client, std::string(baseOf(name)));
  return !counts.empty() && counts.begin()->second == indexCountOf(name);
}

// What the service says of a value that no situation allows.
void complainOfValue(Client& client, const Assignment& assignment) {
  const InstanceState state = client.service.states(COMMITTED, {assignment.name}).front();
  complain("cannot set " + quotedWord(assignment.name) + " to " + quotedWord(assignment.value) +
           (state.is(STATE_LIMITED) ? ": it takes " + rangeText(state) : ": the value is invalid"));
}

}  // namespace

std::string refusalSentence(const std::string& why) {
  if (why.starts_with("another ")) return why;
  if (!why.starts_with(VALUE_REFUSED)) return "it " + why;
  return "it refuses the value" + why.substr(VALUE_REFUSED.size());
}

std::string failureSentence(const Refusal& failing) {
  return quotedWord(failing.name) + " cannot follow: " + refusalSentence(failing.why);
}

AskedStates findStates(Client& client, uint32_t transaction, const Names& asked) {
  AskedStates out;
  out.isList = asked.size() > 1;
  const Names names = withoutPatterns(client, transaction, asked, out);
  if (names.empty()) return out;
  out.states = client.service.states(transaction, names);
  std::erase_if(out.states, [&](const InstanceState& state) {
    if (state.is(STATE_KNOWN)) return false;
    out.unknown.push_back(state.name);
    return true;
  });
  resolveAbsent(client, transaction, out);
  return out;
}

void complainOfUnknown(Client& client, const Names& names) {
  if (names.empty()) return;
  const std::vector<ListedParameter> listed = client.service.list("");
  for (const std::string& name : names) {
    complain(isNamePattern(name) ? "no parameter fits \"" + name + "\""
                                 : unknownNameText(name, listed));
  }
}

void stage(Client& client, uint32_t transaction, const std::vector<Assignment>& assignments,
           bool isStatus) {
  const std::vector<Refusal> refused = client.service.set(transaction, assignments, isStatus);
  Names unknown;
  for (const Refusal& refusal : refused) {
    // Of an instance that cannot be, the service judges the value first.
    if (!isInstance(client, refusal.name)) {
      unknown.push_back(refusal.name);
    } else if (contains(refusal.why, INVALID_VALUE)) {
      complainOfValue(client, *std::ranges::find(assignments, refusal.name, &Assignment::name));
    } else {
      complain("cannot set " + quotedWord(refusal.name) + ": " + refusal.why);
    }
  }
  complainOfUnknown(client, unknown);
  if (!unknown.empty()) std::exit(STATUS_UNKNOWN);
  if (!refused.empty()) std::exit(STATUS_REFUSED);
}

std::vector<std::string> translatedValues(Client& client,
                                          const std::vector<Assignment>& assignments) {
  Names bases;
  for (const Assignment& assignment : assignments) bases.emplace_back(baseOf(assignment.name));
  const std::vector<Definition> definitions = client.service.definitions(bases);
  std::vector<std::string> values;
  for (size_t i = 0; i < assignments.size(); ++i) {
    const std::string& value = assignments[i].value;
    const std::vector<Assignment>& known = definitions[i].translations;
    const auto found = std::ranges::find(known, value, &Assignment::name);
    values.push_back(found == known.end() ? value : found->value);
  }
  return values;
}

int complainOfRefusals(Client& client, const std::vector<Refusal>& refused) {
  Names unknown;
  Names known;
  for (const Refusal& refusal : refused) {
    if (contains(refusal.why, WRONG_INDEX_COUNT)) {
      unknown.push_back(refusal.name);
      continue;
    }
    known.push_back(refusal.name);
    if (known.size() > MOST_COMPLAINTS) continue;
    complain("cannot set " + quotedWord(refusal.name) + ": " + refusalSentence(refusal.why));
  }
  if (known.size() > MOST_COMPLAINTS) {
    complain("and " + std::to_string(known.size() - MOST_COMPLAINTS) + " more");
  }
  if (!known.empty()) complain("see " + client.program + " why " + shellWord(known.front()));
  complainOfUnknown(client, unknown);
  if (!unknown.empty()) return STATUS_UNKNOWN;
  return refused.empty() ? STATUS_DONE : STATUS_REFUSED;
}

Preview previewAccepted(Client& client, uint32_t transaction) {
  Preview preview = client.service.preview(transaction);
  const int status = complainOfRefusals(client, preview.refused);
  if (status != STATUS_DONE) std::exit(status);
  return preview;
}
