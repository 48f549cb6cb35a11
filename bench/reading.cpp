// Reading a definition text: its lines into records, the records into definitions, the definitions
// into order. The complexity is that of the number of definitions.
#include <benchmark/benchmark.h>

#include "bench/device.h"

namespace {

constexpr int64_t SMALL = 1000;
constexpr int64_t LARGE = 100000;

void countDefinitions(benchmark::State& state) {
  state.SetComplexityN(state.range(0));
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

void readLines(benchmark::State& state) {
  const std::string text = mixedText(state.range(0));
  while (state.KeepRunning()) benchmark::DoNotOptimize(read(text));
  countDefinitions(state);
}

void buildRecords(benchmark::State& state) {
  const DefinitionText text = read(mixedText(state.range(0)));
  while (state.KeepRunning()) {
    Database database;
    build(text, database);
  }
  countDefinitions(state);
}

BENCHMARK(readLines)->RangeMultiplier(10)->Range(SMALL, LARGE)->Complexity();
BENCHMARK(buildRecords)->RangeMultiplier(10)->Range(SMALL, LARGE)->Complexity();

}  // namespace
