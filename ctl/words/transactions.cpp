// transactions: who has what open.
#include <limits>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>

#include "ctl/service/exit_status.h"
#include "ctl/words/arguments.h"
#include "ctl/words/word.h"

namespace {

int list(Client& client) {
  const std::vector<OpenTransaction> open = client.service.transactions();
  if (client.out.isJson()) {
    Json json = Json::array();
    for (const OpenTransaction& each : open) {
      json.push_back({{"id", each.id},
                      {"owner", each.owner},
                      {"staged", each.staged},
                      {"seconds", each.seconds}});
    }
    client.out.json(json);
    return STATUS_DONE;
  }
  if (open.empty()) return STATUS_DONE;
  std::vector<std::vector<std::string>> rows = {{"ID", "OWNER", "STAGED", "SECONDS"}};
  for (const OpenTransaction& each : open) {
    rows.push_back({std::to_string(each.id), each.owner.empty() ? "anybody" : each.owner,
                    std::to_string(each.staged), std::to_string(each.seconds)});
  }
  client.out.table(rows);
  return STATUS_DONE;
}

int end(Client& client, uint32_t id) {
  const std::optional<std::string> refusal = client.service.end(id);
  if (!refusal) return STATUS_DONE;
  for (const OpenTransaction& each : client.service.transactions()) {
    if (each.id != id) continue;
    complain("transaction " + std::to_string(id) + " is of " + each.owner +
             " alone, and ends when that leaves the bus");
    return STATUS_REFUSED;
  }
  complain("no transaction " + std::to_string(id) + " is open");
  return STATUS_UNKNOWN;
}

}  // namespace

RunWord defineTransactions(CLI::App& word) {
  const auto ended = std::make_shared<std::optional<uint32_t>>();
  word.add_option("--end", *ended, "End this one; what it has staged is lost")
      ->check(wholeNumber(0, std::numeric_limits<uint32_t>::max()))
      ->type_name("ID");
  return [ended](Client& client) { return *ended ? end(client, **ended) : list(client); };
}
