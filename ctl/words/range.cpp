// range: what parameters and indices take, now or in another situation.
#include <memory>
#include <nlohmann/json.hpp>

#include "ctl/service/exit_status.h"
#include "ctl/text/quoted.h"
#include "ctl/text/range_text.h"
#include "ctl/words/arguments.h"
#include "ctl/words/asked.h"
#include "ctl/words/word.h"

namespace {

struct RangeArguments {
  Texts names;
  Texts with;
};

// Takes the names of indices out of `unknown`.
void findIndices(Client& client, uint32_t transaction, AskedStates& asked) {
  const auto ranges = client.service.indexRanges(transaction, asked.unknown);
  Names unknown;
  for (size_t i = 0; i < ranges.size(); ++i) {
    if (ranges[i]) {
      asked.states.push_back(*ranges[i]);
    } else {
      unknown.push_back(asked.unknown[i]);
    }
  }
  asked.unknown = std::move(unknown);
}

void print(const Output& out, const AskedStates& asked) {
  if (out.isJson()) {
    Json json = Json::object();
    for (const InstanceState& state : asked.states) json[state.name] = rangeJson(state);
    return out.json(json);
  }
  for (const InstanceState& state : asked.states) {
    const std::string range = rangeText(state);
    if (out.form() == FORM_NULL) {
      out.record(asked.isList ? state.name + "=" + range : range);
    } else if (asked.isList) {
      out.line(out.style().name(quotedWord(state.name)) + ": " + range);
    } else {
      out.line(range);
    }
  }
}

int complainOfMissing(const Client& client, const std::vector<InstanceState>& states) {
  int status = STATUS_DONE;
  for (const InstanceState& state : states) {
    if (!state.is(STATE_NO_LIMITS)) continue;
    const std::string name = quotedWord(state.name);
    complain("what " + name + " takes cannot be computed now: see " + client.program + " why " +
             shellWord(state.name));
    status = STATUS_REFUSED;
  }
  return status;
}

int rangeIn(Client& client, uint32_t transaction, const Texts& names) {
  AskedStates asked = findStates(client, transaction, names);
  if (!asked.unknown.empty()) {
    const OwnTransaction empty(client.service);
    findIndices(client, transaction == COMMITTED ? empty.id() : transaction, asked);
  }
  print(client.out, asked);
  complainOfUnknown(client, asked.unknown);
  const int status = complainOfMissing(client, asked.states);
  return asked.unknown.empty() ? status : STATUS_UNKNOWN;
}

int range(Client& client, const RangeArguments& arguments) {
  if (arguments.with.empty()) return rangeIn(client, COMMITTED, arguments.names);
  const OwnTransaction transaction(client.service);
  stage(client, transaction.id(), assignmentsOf(arguments.with));
  static_cast<void>(previewAccepted(client, transaction.id()));  // for its complaints
  return rangeIn(client, transaction.id(), arguments.names);
}

}  // namespace

RunWord defineRange(CLI::App& word) {
  const auto arguments = std::make_shared<RangeArguments>();
  addTexts(word, "NAME", arguments->names, "Parameters and indices; * and ? fit several");
  addWith(word, arguments->with);
  return [arguments](Client& client) { return range(client, *arguments); };
}
