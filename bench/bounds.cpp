// Bounds: how they grow, and what a check costs.
#include <benchmark/benchmark.h>

#include <string>

#include "sw/parm/bounds.h"

namespace {

// Every other number, in the order that fits worst.
BoundsParm manySpans(int64_t count) {
  BoundsParm bounds;
  for (int64_t i = count; i > 0; --i) {
    static_cast<void>(bounds.integers().addSpan(static_cast<int>(2 * i), static_cast<int>(2 * i)));
  }
  return bounds;
}

void addingSpans(benchmark::State& state) {
  while (state.KeepRunning()) benchmark::DoNotOptimize(manySpans(state.range(0)).count());
  state.SetComplexityN(state.range(0));
}

void check(benchmark::State& state, const BoundsParm& bounds, const char* value) {
  while (state.KeepRunning()) {
    std::string corrected = value;
    benchmark::DoNotOptimize(bounds.check(corrected, true));
  }
}

void checkingSpans(benchmark::State& state, const char* value) {
  check(state, manySpans(state.range(0)), value);
}

void checkingTexts(benchmark::State& state, const char* value) {
  BoundsParm bounds;
  for (const char* text : {"off", "auto", "manual"}) {
    static_cast<void>(bounds.strings().addText(text));
  }
  check(state, bounds, value);
}

BENCHMARK(addingSpans)->RangeMultiplier(10)->Range(10, 10000)->Complexity();
BENCHMARK_CAPTURE(checkingSpans, within, "2")->Arg(1)->Arg(10000);
BENCHMARK_CAPTURE(checkingSpans, corrected, "3")->Arg(1)->Arg(10000);
BENCHMARK_CAPTURE(checkingTexts, within, "auto");
BENCHMARK_CAPTURE(checkingTexts, corrected, "none");

}  // namespace
