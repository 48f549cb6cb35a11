// The documentation: what the page of a small and of a large device costs, and how large it is.
#include <benchmark/benchmark.h>

#include <memory>

#include "bench/device.h"
#include "bench/example.h"
#include "doc/json.h"
#include "doc/make_model.h"
#include "doc/markdown.h"
#include "doc/page.h"
#include "doc/picture.h"
#include "doc/standard_table.h"
#include "play/engine_device.h"
#include "vid_std.h"

namespace {

const NamedValues CONSTANTS = {{"MODEL", "pro"}, {"CHANNELS", "4"}, {"AUDIO", "1"}};
constexpr double MEGABYTE = 1e6;

// As ostrel-doc does it.
DocModel modelOf(const std::string& text) {
  initVidStdTables();
  const SourceText source("text", text);
  Findings findings;
  ReadText read;
  readText(source, read, findings);
  const Variant variant = buildVariant(source, read, CONSTANTS, findings);
  DocModel model = makeModel(source, read, variant, "A device");
  const std::unique_ptr<Device> device =
      startEngineDevice(text, PlayConstants(CONSTANTS.begin(), CONSTANTS.end()));
  model.standards = standardsOf(model, *device);
  return model;
}

void page(benchmark::State& state, const std::string& text, bool hasPicture) {
  size_t bytes = 0;
  size_t parameters = 0;
  while (state.KeepRunning()) {
    const DocModel model = modelOf(text);
    PageParts parts;
    if (hasPicture) parts.picture = makePicture(model).html;
    bytes = pageText(model, parts).size();
    parameters = model.parameters.size();
  }
  state.counters["MB"] = static_cast<double>(bytes) / MEGABYTE;
  state.counters["parameters"] = static_cast<double>(parameters);
}

using Write = std::string (*)(const DocModel&);

void otherForm(benchmark::State& state, Write write) {
  const std::string text = examples(state.range(0));
  size_t bytes = 0;
  while (state.KeepRunning()) bytes = write(modelOf(text)).size();
  state.counters["MB"] = static_cast<double>(bytes) / MEGABYTE;
}

void pageOfExamples(benchmark::State& state) { page(state, examples(state.range(0)), true); }
void pageWithoutPicture(benchmark::State& state) { page(state, examples(state.range(0)), false); }
void pageOfMixedText(benchmark::State& state) { page(state, mixedText(state.range(0)), true); }
void markdown(benchmark::State& state) { otherForm(state, markdownText); }
void json(benchmark::State& state) { otherForm(state, jsonText); }

constexpr int64_t NINETEEN = 19;  // examples, that is 1,634 parameters
constexpr int64_t MANY = 1600;
BENCHMARK(pageOfExamples)->Arg(1)->Arg(NINETEEN)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(pageWithoutPicture)->Arg(NINETEEN)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(pageOfMixedText)->Arg(MANY)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(markdown)->Arg(NINETEEN)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(json)->Arg(NINETEEN)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace
