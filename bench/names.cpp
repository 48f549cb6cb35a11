// Names: taken apart, put together, looked up.
#include <benchmark/benchmark.h>

#include "bench/device.h"
#include "database/transaction.h"
#include "sw/parm/parm_name.h"

namespace {

void splitting(benchmark::State& state, const char* name) {
  while (state.KeepRunning()) benchmark::DoNotOptimize(splitName(name));
}

void joining(benchmark::State& state) {
  const IndexTuple indices = {"12", "left"};
  while (state.KeepRunning()) benchmark::DoNotOptimize(fullName("crop", indices));
}

// Each name of a device in turn, as many as there are.
void lookingUp(benchmark::State& state) {
  Database database;
  build(read(fanText(state.range(0))), database);
  const Transaction transaction(database);
  std::vector<std::string> names;
  for (int64_t i = 0; i < state.range(0); ++i) names.push_back("p" + std::to_string(i));
  size_t next = 0;
  while (state.KeepRunning()) {
    benchmark::DoNotOptimize(transaction.find(names[next]));
    next = (next + 1) % names.size();
  }
}

BENCHMARK_CAPTURE(splitting, plain, "output_standard");
BENCHMARK_CAPTURE(splitting, indexed, "crop[12][left]");
BENCHMARK(joining);
BENCHMARK(lookingUp)->RangeMultiplier(10)->Range(1000, 100000);

}  // namespace
