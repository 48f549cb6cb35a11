// The checker: texts of any size without proofs, and the example of a device with proofs.
#include <benchmark/benchmark.h>

#include "bench/device.h"
#include "bench/example.h"
#include "check/checker.h"
#include "vid_std.h"

namespace {

void check(benchmark::State& state, const std::string& text, const CheckOptions& options) {
  initVidStdTables();
  const SourceText source("text", text);
  while (state.KeepRunning()) benchmark::DoNotOptimize(checkText(source, options));
}

void withoutProofs(benchmark::State& state) {
  CheckOptions options;
  options.proofs = false;
  check(state, mixedText(state.range(0)), options);
  state.SetComplexityN(state.range(0));
}

void allVariantsOfTheExample(benchmark::State& state) {
  CheckOptions options;
  options.constants = {
      {"MODEL", {"pro", "basic"}}, {"CHANNELS", {"1", "2", "3", "4"}}, {"AUDIO", {"0", "1"}}};
  check(state, exampleText(), options);
}

void examplesInOneText(benchmark::State& state) {
  CheckOptions options;
  options.constants = {{"MODEL", {"pro"}}, {"CHANNELS", {"4"}}, {"AUDIO", {"1"}}};
  check(state, examples(state.range(0)), options);
}

// Every one of them is in the way of a commit that tries the one that they follow.
void followersOfOne(benchmark::State& state) {
  check(state, fanText(state.range(0)), {});
  state.SetComplexityN(state.range(0));
}

BENCHMARK(withoutProofs)->Arg(2000)->Arg(10000)->Arg(100000)->Complexity();
BENCHMARK(allVariantsOfTheExample)->Unit(benchmark::kMillisecond);
BENCHMARK(followersOfOne)->Arg(300)->Arg(3000)->Unit(benchmark::kMillisecond)->Complexity();
BENCHMARK(examplesInOneText)->Arg(1)->Arg(18)->Unit(benchmark::kMillisecond);

}  // namespace
