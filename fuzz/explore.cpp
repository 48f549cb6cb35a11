// Fuzzes exploration: the input is a seed and a definition text, or bytes that a small device is
// made of. Whatever the text is, the walks end, a trial and an order are always right, and the
// session of a find fails when it is played.
#include <string>
#include <vector>

#include "explore/explorer.h"
#include "fuzz/captured_stderr.h"
#include "fuzz/demand.h"
#include "fuzz/fuzz_input.h"
#include "fuzz/fuzz_target.h"
#include "fuzz/small_device.h"
#include "play/engine_device.h"
#include "play/player.h"
#include "play/session_reader.h"
#include "vid_std.h"

namespace {

constexpr uint64_t MOST_STEPS = 60;

class Outcomes final : public PlayObserver {
 public:
  void played(const PlayedOperation& played) override { areMet = areMet && played.isAsExpected; }
  bool areMet = true;
};

void expectFailing(const std::string& text, const StartDevice& start,
                   const PlayConstants& constants) {
  Session session;
  std::vector<SessionError> errors;
  const auto readFile = [](const std::string&, std::string&) { return 1; };
  readSession("s", text, readFile, session, errors);
  demand(errors.empty(), "what was found is no session: ", text);
  Outcomes outcomes;
  const auto error = playSession(session, start, constants, outcomes);
  demand(!error, "what was found cannot be played: ", text);
  demand(!outcomes.areMet, "what was found does not fail: ", text);
}

void expectSense(const TextCoverage& coverage) {
  for (const StatementCoverage& statement : coverage.statements()) {
    const bool isAsked = statement.whenTrue + statement.whenFalse > 0;
    const bool isControl = statement.keyword.starts_with("ctrl");
    demand(!isAsked || statement.hasCondition, "an outcome without a condition", "");
    demand(!isControl || isAsked == (statement.chosen > 0), "a control that was half asked", "");
    demand(isControl || !statement.hasCondition || statement.chosen == 0 || statement.whenTrue > 0,
           "chosen, and never true", "");
  }
}

void walkOn(const std::string& text, uint64_t seed) {
  const PlayConstants constants = {{"CHANNELS", "2"}, {"AUDIO", "0"}, {"FITTED", "1"}};
  TextCoverage coverage(text);
  const StartDevice start = [&](const PlayConstants& given) {
    return startEngineDevice(text, given, &coverage);
  };
  const ExploreResult result = explore({start, &coverage, {constants}, seed, {MOST_STEPS, {}}});
  expectSense(coverage);
  for (const Find& find : result.finds) {
    const std::string session = sessionOf(find);
    demand(find.fault.property != PROPERTY_TRIAL, "a trial was wrong: ", session);
    demand(find.fault.property != PROPERTY_ORDER, "an order mattered: ", session);
    expectFailing(session, start, constants);
  }
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  initVidStdTables();
  const CapturedStderr silence;
  FuzzInput input(data, size);
  const uint64_t seed = input.below(16);
  const bool isMade = input.flip();
  walkOn(isMade ? smallDevice(input)
                : std::string(textOf(data, size).substr(std::min<size_t>(size, 2))),
         seed);
  return 0;
}
