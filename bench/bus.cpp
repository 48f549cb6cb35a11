// Calls of a client over a private bus, with the bus and the client's own work: the second
// interface beside the first. What counts are ratios within one run:
//
//   GetState / get_range_bulk of the same names
//   a commit with one watcher / one without
//   completing a word among many names / among one
//
// and what a person waits for: List of a large device, `ostrelctl get` of a page, `ostrelctl up`.
#include <benchmark/benchmark.h>

#include <chrono>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "bench/device.h"
#include "tests/harness/client.h"
#include "tests/harness/daemon.h"
#include "tests/harness/plain_client.h"
#include "tests/harness/private_bus.h"
#include "tests/harness/process.h"

namespace {

// A daemon on a bus of its own, and clients of it.
class Served {
 public:
  explicit Served(const std::string& text)
      : daemon_({.text = text, .busAddress = bus_.address()}), client_(bus_.address()) {
    if (!client_.waitForService(daemon_.process())) abort();
  }

  // Runs the client of the daemon's build, which prints something.
  void run(std::vector<std::string> words) {
    const std::filesystem::path daemon =
        std::filesystem::read_symlink("/proc/" + std::to_string(daemon_.process().pid()) + "/exe");
    words.insert(words.begin(), daemon.parent_path().parent_path() / "ctl/ostrelctl");
    Process program({.command = std::move(words),
                     .environment = {{"DBUS_SESSION_BUS_ADDRESS", bus_.address()}}});
    if (program.waitForEnd().out.find('\n') == std::string::npos) abort();
  }

  void call(const char* path, const char* interface, const char* method, GVariant* arguments) {
    GError* error = nullptr;
    GVariant* const reply = g_dbus_connection_call_sync(
        client_.connection(), "org.tavrel.transaction", path, interface, method, arguments, nullptr,
        G_DBUS_CALL_FLAGS_NONE, 60000, nullptr, &error);
    if (reply == nullptr) abort();
    g_variant_unref(reply);
  }
  void list() {
    if (!plain_.list()) abort();
  }
  void parameters(const char* method, GVariant* arguments) {
    call("/parameters", "org.tavrel.parameters1", method, arguments);
  }
  void transaction(const char* method, GVariant* arguments) {
    call("/transaction", "org.tavrel.transaction", method, arguments);
  }

 private:
  PrivateBus bus_;
  Daemon daemon_;
  Client client_;
  PlainClient plain_{bus_.address()};
};

// One at a time: the last one that was asked for.
Served& served(const std::string& text) {
  static std::string present;
  static std::unique_ptr<Served> device;
  if (device == nullptr || text != present) {
    device.reset();
    device = std::make_unique<Served>(text);
    present = text;
  }
  return *device;
}

constexpr guint32 NO_TRANSACTION = 4294967295;

GVariant* namesOf(int64_t count) {
  GVariantBuilder names;
  g_variant_builder_init(&names, G_VARIANT_TYPE("as"));
  for (int64_t i = 0; i < count; ++i) {
    g_variant_builder_add(&names, "s", ("p" + std::to_string(i)).c_str());
  }
  return g_variant_builder_end(&names);
}

// `statements` go into each of the definitions.
std::string plainText(int64_t count, const std::string& statements = "") {
  std::string text;
  for (int64_t i = 0; i < count; ++i) {
    text += "p" + std::to_string(i) + " rw { " + statements + "rangeValid { 0..1000 } }\n";
  }
  return text;
}

void list(benchmark::State& state) {
  Served& device = served(plainText(state.range(0)));
  while (state.KeepRunning()) device.list();
}
BENCHMARK(list)->Arg(100000)->Unit(benchmark::kMillisecond)->UseRealTime();

void getState(benchmark::State& state) {
  Served& device = served(plainText(state.range(0)));
  while (state.KeepRunning()) {
    device.parameters("GetState", g_variant_new("(u@as)", NO_TRANSACTION, namesOf(state.range(0))));
  }
}
void getRangeBulk(benchmark::State& state) {
  Served& device = served(plainText(state.range(0)));
  device.transaction("start", nullptr);
  while (state.KeepRunning()) {
    device.transaction("get_range_bulk", g_variant_new("(u@as)", 0, namesOf(state.range(0))));
  }
}
BENCHMARK(getState)->Arg(10000)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(getRangeBulk)->Arg(10000)->Unit(benchmark::kMillisecond)->UseRealTime();

void getWithTool(benchmark::State& state) {
  Served& device = served(plainText(state.range(0)));
  std::vector<std::string> words = {"get"};
  for (int64_t i = 0; i < state.range(0); ++i) words.push_back("p" + std::to_string(i));
  while (state.KeepRunning()) device.run(words);
}
void upWithTool(benchmark::State& state) {
  Served& device = served(plainText(state.range(0), "default { 5 } "));
  while (state.KeepRunning()) device.run({"up"});
}
BENCHMARK(getWithTool)->Arg(100)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(upWithTool)->Arg(10000)->Unit(benchmark::kMillisecond)->UseRealTime();

// What a shell waits for. Many names, of which some are offered.
void complete(benchmark::State& state) {
  const bool isIndexed = state.range(1) != 0;
  const std::string index = "i index { rangeValid { 1..2 } }\n";
  Served& device = served(isIndexed ? index + plainText(state.range(0), "index { i } ")
                                    : plainText(state.range(0)));
  while (state.KeepRunning()) device.run({"complete", "line", "ostrelctl get ", ""});
}
BENCHMARK(complete)
    ->ArgNames({"names", "indexed"})
    ->ArgsProduct({{1, 10000}, {0, 1}})
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

// A parameter and so many that follow it. The client does not commit without a pause.
void commit(benchmark::State& state) {
  Served& device = served(fanText(state.range(0)));
  const bool isWatched = state.range(1) != 0;
  device.parameters("Watch", g_variant_new("(bb)", isWatched, isWatched));
  int64_t commits = 0;
  while (state.KeepRunning()) {
    const char* const value = commits++ % 2 == 0 ? "1000" : "2000";
    const auto start = std::chrono::steady_clock::now();
    device.transaction("single_set", g_variant_new("(ss)", "limit", value));
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    state.SetIterationTime(taken.count());
    // The signals come behind the answer, and before the answer to the next call.
    device.parameters("ListTransactions", nullptr);
  }
}
BENCHMARK(commit)
    ->ArgNames({"followers", "watchers"})
    ->ArgsProduct({{1, 100, 1000, 10000}, {0, 1}})
    ->Unit(benchmark::kMicrosecond)
    ->UseManualTime();

}  // namespace
