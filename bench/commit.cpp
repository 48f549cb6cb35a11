// Commits that move everything that depends on the one parameter that a client has set. The
// complexity is that of the number of dependents.
#include <benchmark/benchmark.h>

#include <vector>

#include "bench/device.h"
#include "database/commit.h"

namespace {

constexpr int64_t SMALL = 1000;
constexpr int64_t LARGE = 100000;

// Commits the two values of a parameter in turn.
void commitInTurn(benchmark::State& state, const std::string& text, const char* name,
                  const char* one, const char* other) {
  Database database;
  build(read(text), database);
  Transaction transaction(database);
  int64_t commits = 0;
  while (state.KeepRunning()) {
    static_cast<void>(transaction.set(name, commits++ % 2 == 0 ? one : other, true));
    std::vector<Change> changes;
    static_cast<void>(commit(transaction, changes));
    benchmark::DoNotOptimize(changes);
  }
}

// The values of "limit" are so far apart that each dependent has to move.
void move(benchmark::State& state, const std::string& text) {
  commitInTurn(state, text, "limit", "1000", "2000");
  state.SetComplexityN(state.range(0));
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

void parameters(benchmark::State& state) { move(state, fanText(state.range(0))); }
void instances(benchmark::State& state) { move(state, indexText(state.range(0))); }

// A parameter that nothing depends on, in a small text and in a large one.
void nothingDepends(benchmark::State& state) {
  commitInTurn(state, mixedText(state.range(0)), "p2", "1", "2");
}

BENCHMARK(parameters)->RangeMultiplier(10)->Range(SMALL, LARGE)->Complexity();
BENCHMARK(instances)->RangeMultiplier(10)->Range(SMALL, LARGE)->Complexity();
BENCHMARK(nothingDepends)->Arg(100)->Arg(LARGE);

}  // namespace
