// confirm: lets a commit of set --confirm stay.
#include <algorithm>
#include <limits>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>

#include "ctl/service/exit_status.h"
#include "ctl/words/arguments.h"
#include "ctl/words/waiting_commits.h"
#include "ctl/words/word.h"

namespace {

std::string lineOf(const WaitingCommit& commit) {
  return std::to_string(commit.process) + ": " + commit.what;
}

// The one that is meant. Ends the program where that is not clear.
WaitingCommit chosen(const Client& client, std::optional<pid_t> process) {
  const std::vector<WaitingCommit> waiting = waitingCommits(client.service);
  if (waiting.empty()) endWith(STATUS_UNKNOWN, "no commit waits to be confirmed");
  if (!process) {
    if (waiting.size() == 1) return waiting.front();
    for (const WaitingCommit& each : waiting) complain(lineOf(each));
    endWith(STATUS_REFUSED, "say which, by the number: " + client.program + " confirm " +
                                std::to_string(waiting.front().process));
  }
  const auto found = std::ranges::find(waiting, *process, &WaitingCommit::process);
  if (found != waiting.end()) return *found;
  for (const WaitingCommit& each : waiting) complain(lineOf(each));
  endWith(STATUS_UNKNOWN, "no commit " + std::to_string(*process) + " waits to be confirmed");
}

int confirm(Client& client, std::optional<pid_t> process) {
  const WaitingCommit commit = chosen(client, process);
  if (!confirmWaiting(commit)) endWith(STATUS_REFUSED, "too late: " + lineOf(commit));
  if (client.out.isJson()) {
    client.out.json({{"confirmed", commit.process}, {"what", commit.what}});
  } else {
    client.out.line("confirmed " + lineOf(commit));
  }
  return STATUS_DONE;
}

}  // namespace

RunWord defineConfirm(CLI::App& word) {
  const auto process = std::make_shared<std::optional<pid_t>>();
  word.add_option("PROCESS", *process, "The number that set --confirm has told, where several wait")
      ->check(wholeNumber(1, std::numeric_limits<pid_t>::max()))
      ->type_name("");
  return [process](Client& client) { return confirm(client, *process); };
}
