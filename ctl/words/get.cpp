// get: values, as they are or as they would be.
#include <map>
#include <memory>
#include <nlohmann/json.hpp>

#include "ctl/service/exit_status.h"
#include "ctl/words/arguments.h"
#include "ctl/words/asked.h"
#include "ctl/words/word.h"

namespace {

struct GetArguments {
  Texts names;
  Texts with;
};

// The instances that a commit of `with` would leave, with their values then.
AskedStates statesAfter(Client& client, const Names& names, const Texts& with) {
  const OwnTransaction transaction(client.service);
  stage(client, transaction.id(), assignmentsOf(with));
  std::map<std::string, std::string> changed;
  for (const Change& change : previewAccepted(client, transaction.id()).changes) {
    changed[change.name] = change.after;
  }
  AskedStates asked = findStates(client, transaction.id(), names);
  if (asked.states.empty()) return asked;
  // A transaction sees what is staged, before it is cut.
  Names found;
  for (const InstanceState& state : asked.states) found.push_back(state.name);
  const std::vector<InstanceState> now = client.service.states(COMMITTED, found);
  for (size_t i = 0; i < now.size(); ++i) {
    const auto change = changed.find(now[i].name);
    asked.states[i].value = change == changed.end() ? now[i].value : change->second;
  }
  return asked;
}

// Takes those names out of `unknown` that are constants, and adds their values.
void findConstants(Client& client, AskedStates& asked) {
  if (asked.unknown.empty()) return;
  const Names values = client.service.values(asked.unknown);
  Names unknown;
  for (size_t i = 0; i < values.size(); ++i) {
    if (values[i].empty()) {
      unknown.push_back(asked.unknown[i]);
    } else {
      asked.states.push_back({.name = asked.unknown[i], .value = values[i]});
    }
  }
  asked.unknown = std::move(unknown);
}

void print(const Output& out, const AskedStates& asked) {
  if (out.isJson()) {
    Json json = Json::object();
    for (const InstanceState& state : asked.states) json[state.name] = state.value;
    return out.json(json);
  }
  for (const InstanceState& state : asked.states) {
    if (asked.isList) {
      out.assignment(state.name, state.value);
    } else {
      out.text(state.value);
    }
  }
}

int get(Client& client, const GetArguments& arguments) {
  AskedStates asked = arguments.with.empty() ? findStates(client, COMMITTED, arguments.names)
                                             : statesAfter(client, arguments.names, arguments.with);
  findConstants(client, asked);
  print(client.out, asked);
  complainOfUnknown(client, asked.unknown);
  return asked.unknown.empty() ? STATUS_DONE : STATUS_UNKNOWN;
}

}  // namespace

RunWord defineGet(CLI::App& word) {
  const auto arguments = std::make_shared<GetArguments>();
  addTexts(word, "NAME", arguments->names, "Parameters; * and ? fit several");
  addWith(word, arguments->with);
  return [arguments](Client& client) { return get(client, *arguments); };
}
