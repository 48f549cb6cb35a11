// Names: taken apart, put together, looked up.
#include <benchmark/benchmark.h>

#include <array>
#include <span>

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

std::vector<std::string> namesOfDevice(int64_t count) {
  std::vector<std::string> names;
  names.reserve(static_cast<size_t>(count));
  for (int64_t i = 0; i < count; ++i) names.push_back("p" + std::to_string(i));
  return names;
}

// Each name of a device in turn, as many as there are.
void lookingUp(benchmark::State& state) {
  Database database;
  build(read(fanText(state.range(0))), database);
  const Transaction transaction(database);
  const std::vector<std::string> names = namesOfDevice(state.range(0));
  size_t next = 0;
  while (state.KeepRunning()) {
    benchmark::DoNotOptimize(transaction.find(names[next]));
    next = (next + 1) % names.size();
  }
}

// Names are looked up as many at once as may be.
void lookingUpTogether(benchmark::State& state) {
  Database database;
  build(read(fanText(state.range(0))), database);
  const Transaction transaction(database);
  std::vector<std::string> names = namesOfDevice(state.range(0));
  std::vector<char*> texts;
  texts.reserve(names.size());
  for (std::string& name : names) texts.push_back(name.data());
  std::array<const std::string*, Database::NAMES_TOGETHER> found;
  size_t next = 0;
  while (state.KeepRunningBatch(static_cast<int64_t>(found.size()))) {
    transaction.findAll(std::span(texts).subspan(next, found.size()), found);
    benchmark::DoNotOptimize(found);
    next = next + 2 * found.size() > texts.size() ? 0 : next + found.size();
  }
}

BENCHMARK_CAPTURE(splitting, plain, "output_standard");
BENCHMARK_CAPTURE(splitting, indexed, "crop[12][left]");
BENCHMARK(joining);
BENCHMARK(lookingUp)->RangeMultiplier(10)->Range(1000, 100000);
BENCHMARK(lookingUpTogether)->RangeMultiplier(10)->Range(1000, 100000);

}  // namespace
