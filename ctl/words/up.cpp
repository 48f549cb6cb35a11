// up: brings the device up, and keeps what a file holds.
#include <memory>
#include <nlohmann/json.hpp>

#include "ctl/service/exit_status.h"
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
    complain("refused: the default of " + quotedWord(refusal.name) + ": " + refusal.why);
  }
  if (!result.restless.empty()) {
    complain(namesText(result.restless) + " depend on each other and never come to rest");
  }
  return result.refusedDefaults.empty() && result.restless.empty() ? STATUS_DONE : STATUS_REFUSED;
}

int up(Client& client, const UpArguments& arguments) {
  client.service.bus().doNotWait();  // others wait for this
  std::vector<Assignment> wanted;
  if (!arguments.file.empty()) wanted = readValuesFile(arguments.file);
  const Levels levels(client.service);
  const BroughtUp result = BringUp(client.service, levels, levels.known(wanted)).run();
  tell(client, result, levels.bases().size());
  int status = STATUS_DONE;
  if (!arguments.file.empty()) {
    status =
        tellRestored(client, restoredOf(client.service, levels, wanted, result.refusedValues, true),
                     "kept", arguments.isStrict);
  } else if (client.out.isJson()) {
    client.out.json({{"up", result.instances},
                     {"empty", result.empty},
                     {"refused", result.refusedDefaults.size()}});
  }
  const int own = complainOfDefaults(result);
  // Clients wait until the device is ready; what was refused is told, and keeps nobody waiting.
  return tellReady(client, status == STATUS_DONE ? own : status);
}

}  // namespace

RunWord defineUp(CLI::App& word) {
  const auto arguments = std::make_shared<UpArguments>();
  addText(word, "--from", arguments->file, "Keep the values of a file of ostrelctl save")
      ->type_name("FILE");
  word.add_flag("--strict", arguments->isStrict, "End with status 4 where a value was cut");
  return [arguments](Client& client) { return up(client, *arguments); };
}
