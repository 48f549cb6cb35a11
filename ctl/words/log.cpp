// log: the last commits.
#include <limits>
#include <memory>
#include <nlohmann/json.hpp>

#include "ctl/service/exit_status.h"
#include "ctl/words/arguments.h"
#include "ctl/words/commits.h"
#include "ctl/words/word.h"

namespace {

Json jsonOf(const PastCommit& commit) {
  Json json = {{"serial", commit.serial},
               {"time", commit.time},
               {"caller", commit.caller},
               {"changes", Json::array()}};
  for (const Change& change : commit.changes) json["changes"].push_back(changeJson(change));
  return json;
}

int log(Client& client, uint32_t count) {
  const std::vector<PastCommit> commits = client.service.history(count);
  if (client.out.isJson()) {
    Json json = Json::array();
    for (const PastCommit& commit : commits) json.push_back(jsonOf(commit));
    client.out.json(json);
    return STATUS_DONE;
  }
  for (const PastCommit& commit : commits) {
    client.out.line(client.out.style().heading("commit " + std::to_string(commit.serial)) + ", " +
                    timeText(commit.time) + ", by " + commit.caller);
    for (const Change& change : commit.changes) {
      if (change.before.empty() && change.after.empty()) continue;
      client.out.line("  " + changeLine(client.out.style(), change));
    }
  }
  return STATUS_DONE;
}

}  // namespace

RunWord defineLog(CLI::App& word) {
  const auto count = std::make_shared<uint32_t>(10);
  word.add_option("-n,--last", *count, "So many commits (10); 0 is all that are kept")
      ->check(wholeNumber(0, std::numeric_limits<uint32_t>::max()))
      ->type_name("N");
  return [count](Client& client) { return log(client, *count); };
}
