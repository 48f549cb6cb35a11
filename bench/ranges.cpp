// Range queries behind a staged change, as a client asks before it commits.
#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "bench/device.h"
#include "database/range_query.h"
#include "database/transaction.h"

namespace {

constexpr int64_t PARAMETERS = 1000;

// The range of each parameter that follows the one that is staged.
void followers(benchmark::State& state) {
  Database database;
  build(read(fanText(PARAMETERS)), database);
  Transaction transaction(database);
  static_cast<void>(transaction.set("limit", "50", true));
  std::vector<std::string> names;
  for (int64_t i = 0; i < PARAMETERS; ++i) names.push_back("p" + std::to_string(i));
  while (state.KeepRunning()) {
    for (const std::string& name : names) {
      BoundsParm range;
      benchmark::DoNotOptimize(queryRange(database, transaction.staged(), name, range));
    }
  }
  state.SetItemsProcessed(state.iterations() * PARAMETERS);
}

BENCHMARK(followers);

}  // namespace
