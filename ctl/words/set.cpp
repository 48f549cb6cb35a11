// set and reset: values and defaults, several in one commit.
#include <algorithm>
#include <cstdlib>
#include <memory>

#include "ctl/service/exit_status.h"
#include "ctl/text/quoted.h"
#include "ctl/words/arguments.h"
#include "ctl/words/asked.h"
#include "ctl/words/commit_and_tell.h"
#include "ctl/words/take_back.h"
#include "ctl/words/waiting_commits.h"
#include "ctl/words/word.h"

namespace {

struct SetArguments {
  Texts texts;
  bool isStatus = false;
  bool isStrict = false;
  int seconds = 0;  // to confirm it; 0 where that is not needed
};

std::string wordsOf(const std::vector<Assignment>& assignments) {
  std::string text;
  for (const Assignment& each : assignments) {
    text += (text.empty() ? "" : " ") + quotedWord(each.name) + "=" + quotedWord(each.value);
  }
  return text;
}

int setNow(Client& client, const SetArguments& arguments,
           const std::vector<Assignment>& assignments) {
  const OwnTransaction transaction(client.service);
  stage(client, transaction.id(), assignments, arguments.isStatus);
  return commitAndTell(client, transaction.id(), wantedOf(assignments),
                       {.isStrict = arguments.isStrict});
}

int set(Client& client, const SetArguments& arguments) {
  const std::vector<Assignment> assignments = assignmentsOf(arguments.texts);
  if (arguments.seconds == 0) return setNow(client, arguments, assignments);
  requireWaitingDirectory();
  Confirmation confirmation(client.service);
  const int status = setNow(client, arguments, assignments);
  confirmation.takeSignals();
  if (confirmation.changes().empty()) return status;
  return awaitConfirmation(client, confirmation, wordsOf(assignments), arguments.seconds,
                           arguments.isStatus, status);
}

// The full names that are to be reset. Of a list those that can be: the rest are not asked for.
Names resettable(Client& client, const SetArguments& arguments) {
  const AskedStates asked = findStates(client, COMMITTED, arguments.texts);
  if (!asked.unknown.empty()) {
    complainOfUnknown(client, asked.unknown);
    std::exit(STATUS_UNKNOWN);
  }
  Names names;
  for (const InstanceState& state : asked.states) {
    const bool isNamed = std::ranges::find(arguments.texts, state.name) != arguments.texts.end();
    if (isNamed || arguments.isStatus || state.is(STATE_WRITABLE)) names.push_back(state.name);
  }
  return names;
}

int reset(Client& client, const SetArguments& arguments) {
  const Names names = resettable(client, arguments);
  const OwnTransaction transaction(client.service);
  const std::optional<std::string> refusal =
      client.service.reset(transaction.id(), names, arguments.isStatus);
  if (refusal) endWith(STATUS_REFUSED, *refusal);
  std::vector<Wanted> wanted;
  for (const std::string& name : names) wanted.push_back({name, std::nullopt});
  return commitAndTell(client, transaction.id(), wanted, {});
}

void addStatus(CLI::App& word, SetArguments& arguments) {
  word.add_flag("--status", arguments.isStatus, "As the device itself: also what is read-only");
}

}  // namespace

RunWord defineSet(CLI::App& word) {
  const auto arguments = std::make_shared<SetArguments>();
  addTexts(word, "NAME=VALUE", arguments->texts, "Parameters with their values");
  addStatus(word, *arguments);
  word.add_flag("--strict", arguments->isStrict, "End with status 4 where a value was cut");
  word.add_option("--confirm", arguments->seconds, "Take it back after that time, unless confirmed")
      ->check(wholeNumber(1, 86400))
      ->type_name("SECONDS");
  return [arguments](Client& client) { return set(client, *arguments); };
}

RunWord defineReset(CLI::App& word) {
  const auto arguments = std::make_shared<SetArguments>();
  addTexts(word, "NAME", arguments->texts, "Parameters; * and ? fit several");
  addStatus(word, *arguments);
  return [arguments](Client& client) { return reset(client, *arguments); };
}
