// up: brings the device up, and keeps what a file holds.
#include <memory>
#include <nlohmann/json.hpp>

#include "ctl/service/exit_status.h"
#include "ctl/service/operator_messages.h"
#include "ctl/text/quoted.h"
#include "ctl/text/sentences.h"
#include "ctl/words/arguments.h"
#include "ctl/words/bring_up.h"
#include "ctl/words/restoring.h"
#include "ctl/words/values_file.h"
#include "ctl/words/word.h"

namespace {

struct UpArguments {
  std::string file;
  bool isStrict = false;
  bool isForgiving = false;
};

void tell(Client& client, const BroughtUp& result, size_t levels) {
  if (client.out.isJson()) return;
  client.out.line("up: " + std::to_string(result.instances) +
                  (result.instances == 1 ? " value in " : " values in ") + std::to_string(levels) +
                  (levels == 1 ? " level" : " levels") +
                  (result.empty == 0 ? ""
                                     : ", " + std::to_string(result.empty) +
                                           " of them empty, without a default"));
}

// What is wrong with the device's own defaults.
int complainOfDefaults(const BroughtUp& result) {
  for (const Refusal& refusal : result.refusedDefaults) {
    tellOperator(DEFAULT_REFUSED, quotedWord(refusal.name) + ": " + refusal.why,
                 {.parameter = refusal.name, .transaction = result.transaction});
  }
  if (!result.restless.empty()) {
    tellOperator(NEVER_AT_REST, namesText(result.restless) + " depend on each other",
                 {.parameter = result.restless.front(), .transaction = result.transaction});
  }
  return result.refusedDefaults.empty() && result.restless.empty() ? STATUS_DONE : STATUS_REFUSED;
}

// A device that comes up with its defaults is more than one that does not.
std::vector<Assignment> readWanted(const UpArguments& arguments) {
  if (arguments.file.empty()) return {};
  if (!arguments.isForgiving) return readValuesFile(arguments.file);
  std::string error;
  std::optional<std::vector<Assignment>> wanted = tryReadValuesFile(arguments.file, error);
  if (!wanted) tellOperator(NOTHING_TO_RESTORE, error);
  return wanted.value_or(std::vector<Assignment>());
}

int up(Client& client, const UpArguments& arguments) {
  client.service.bus().doNotWait();  // others wait for this
  const std::vector<Assignment> wanted = readWanted(arguments);
  const Levels levels(client.service);
  const BroughtUp result = BringUp(client.service, levels, levels.known(wanted)).run();
  tell(client, result, levels.bases().size());
  int status = STATUS_DONE;
  if (!arguments.file.empty()) {
    status =
        tellRestored(client, restoredOf(client.service, levels, wanted, result.refusedValues, true),
                     "kept", arguments.isStrict, result.transaction);
  } else if (client.out.isJson()) {
    client.out.json({{"up", result.instances},
                     {"empty", result.empty},
                     {"refused", result.refusedDefaults.size()}});
  }
  const int own = complainOfDefaults(result);
  // Clients wait until the device is ready; what was refused is told, and keeps nobody waiting.
  status = tellReady(client, status == STATUS_DONE ? own : status);
  return arguments.isForgiving ? STATUS_DONE : status;
}

}  // namespace

RunWord defineUp(CLI::App& word) {
  const auto arguments = std::make_shared<UpArguments>();
  addText(word, "--from", arguments->file, "Keep the values of a file of ostrelctl save")
      ->type_name("FILE");
  word.add_flag("--forgiving", arguments->isForgiving,
                "For units: the status is 0 as long as the device is up");
  word.add_flag("--strict", arguments->isStrict, "End with status 4 where a value was cut");
  return [arguments](Client& client) { return up(client, *arguments); };
}
