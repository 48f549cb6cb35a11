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

// The values that a commit of `with` would leave, of those that it would change.
std::map<std::string, std::string> changedValues(Client& client, const Texts& with) {
  std::map<std::string, std::string> values;
  if (with.empty()) return values;
  const OwnTransaction transaction(client.service);
  stage(client, transaction.id(), assignmentsOf(with));
  for (const Change& change : previewAccepted(client, transaction.id()).changes) {
    values[change.name] = change.after;
  }
  return values;
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
  const std::map<std::string, std::string> changed = changedValues(client, arguments.with);
  AskedStates asked = findStates(client, COMMITTED, arguments.names);
  findConstants(client, asked);
  for (InstanceState& state : asked.states) {
    if (const auto found = changed.find(state.name); found != changed.end()) {
      state.value = found->second;
    }
  }
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
