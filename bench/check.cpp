// The checker: texts of any size without proofs, and the example of a device with proofs.
#include <benchmark/benchmark.h>

#include <fstream>
#include <regex>
#include <sstream>

#include "bench/device.h"
#include "check/checker.h"
#include "vid_std.h"

namespace {

// From the top of the tree, where scripts/bench runs.
constexpr const char* EXAMPLE = "examples/frame-synchroniser.ostrel";

std::string exampleText() {
  std::ostringstream text;
  text << std::ifstream(EXAMPLE).rdbuf();
  return text.str();
}

// The example `count` times, each with names of its own.
std::string examples(int64_t count) {
  const std::string text = exampleText();
  const std::regex definition("(^|\\n)([a-z_0-9]+) (rw|ro|rostrict|wo|index) \\{");
  std::string names;
  for (std::sregex_iterator i(text.begin(), text.end(), definition), end; i != end; ++i) {
    names += (names.empty() ? "" : "|") + (*i)[2].str();
  }
  const std::regex name("\\b(" + names + ")\\b");
  std::string all;
  for (int64_t i = 0; i < count; ++i) {
    all += std::regex_replace(text, name, "$1_" + std::to_string(i));
  }
  return all;
}

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
