// Sessions, and exploration.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "check/constant_choices.h"
#include "explore/explorer.h"
#include "play/engine_device.h"
#include "play/player.h"
#include "play/session_reader.h"
#include "vid_std.h"

namespace {

constexpr int PARAMETERS = 2000;
constexpr int OPERATIONS = 1000;

// Every tenth parameter limits the nine behind it.
std::string manyParameters() {
  std::string text;
  for (int i = 0; i < PARAMETERS; ++i) {
    const std::string leader = "p" + std::to_string(i / 10 * 10);
    text += "p" + std::to_string(i) + " rw { rangeValid { 0.." +
            (i % 10 == 0 ? "100" : "(" + leader + ")") + " } default { 9 } }\n";
  }
  return text;
}

// A mix of what sessions have.
std::string manyOperations() {
  std::string text;
  for (int i = 0; i < OPERATIONS / 5; ++i) {
    const std::string leader = "p" + std::to_string(i * 10);
    const std::string follower = "p" + std::to_string(i * 10 + 3);
    text.append("single_set ").append(leader).append(" 50\nset ").append(follower);
    text.append(" 99\nrange ").append(follower).append(" -> 0..50\ncommit -> ").append(follower);
    text.append("=50\nget ").append(follower).append(" -> 50\n");
  }
  return text;
}

class AllMet final : public PlayObserver {
 public:
  void played(const PlayedOperation& played) override { areMet = areMet && played.isAsExpected; }
  bool areMet = true;
};

void play(benchmark::State& state, bool isCovered) {
  initVidStdTables();
  const std::string definitions = manyParameters();
  const std::string operations = manyOperations();
  const auto readFile = [](const std::string&, std::string&) { return 1; };
  while (state.KeepRunning()) {
    Session session;
    std::vector<SessionError> errors;
    readSession("s", operations, readFile, session, errors);
    TextCoverage coverage(isCovered ? definitions : "");
    const StartDevice start = [&](const PlayConstants& constants) {
      return startEngineDevice(definitions, constants, isCovered ? &coverage : nullptr);
    };
    AllMet outcomes;
    if (playSession(session, start, {}, outcomes) || !errors.empty() || !outcomes.areMet) {
      std::abort();
    }
  }
}

// Reading the text of 2,000 parameters and the session of 1,000 operations is part of it.
void playSession(benchmark::State& state) { play(state, false); }
BENCHMARK(playSession)->Unit(benchmark::kMillisecond);

void playCoveredSession(benchmark::State& state) { play(state, true); }
BENCHMARK(playCoveredSession)->Unit(benchmark::kMillisecond);

// From the top of the tree, where scripts/bench runs.
std::string contentsOf(const std::string& name) {
  std::ifstream file("examples/" + name);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

// All variants of the frame synchroniser, with new devices, coverage and all that is checked.
void exploreFrameSynchroniser(benchmark::State& state) {
  initVidStdTables();
  const std::string definitions = contentsOf("frame-synchroniser.ostrel");
  ConstantChoices choices;
  if (definitions.empty() ||
      !addConstantChoices("", contentsOf("frame-synchroniser.constants"), choices).empty()) {
    std::abort();
  }
  std::vector<PlayConstants> variants;
  for (const NamedValues& values : variantsOf(choices)) {
    variants.emplace_back(values.begin(), values.end());
  }
  uint64_t commits = 0;
  while (state.KeepRunning()) {
    TextCoverage coverage(definitions);
    const StartDevice start = [&](const PlayConstants& constants) {
      return startEngineDevice(definitions, constants, &coverage);
    };
    const ExploreResult result = explore({start, &coverage, variants, 1, {10000, {}}});
    if (!result.finds.empty() || !coverage.totals().isFull()) std::abort();
    commits += result.commits;
  }
  state.counters["commits/min"] =
      benchmark::Counter(60.0 * static_cast<double>(commits), benchmark::Counter::kIsRate);
}
BENCHMARK(exploreFrameSynchroniser)->Unit(benchmark::kMillisecond);

}  // namespace
