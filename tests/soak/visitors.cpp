// The soak of the second interface: clients that come, watch, hold transactions of their own, ask
// everything, commit, and leave without a word; whatever was kept for them has to go with them.
//
//   soak_visitors VISITS SEED       as in: nice build/release/tests/soak/soak_visitors 20000 1
//
// At each tenth of the visits a row of the report is printed: visits, commits, signals that one
// client who stays has got, resident memory and open descriptors of the daemon, seconds.
//
// The exit status is 1 when a visitor is left over, when signals are not in the order of their
// commits, when the daemon has more descriptors open than after the first tenth, or, from 20,000
// visits on, when its memory has grown by more than 1 % since then.
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include "tests/harness/daemon.h"
#include "tests/harness/parameters_client.h"
#include "tests/harness/private_bus.h"

namespace {

constexpr uint64_t TENTHS = 10;
constexpr uint64_t VISITS_OF_SETTLED_MEMORY = 20000;
constexpr int FULL_HISTORY = 1100;
constexpr const char* COMMITTED = "4294967295";
#ifdef __SANITIZE_ADDRESS__
constexpr bool IS_SANITIZED = true;
#else
constexpr bool IS_SANITIZED = false;
#endif

std::string contentsOf(const char* file) {
  std::ifstream stream(file);
  return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

[[noreturn]] void fail(const std::string& text) {
  printf("%s\n", text.c_str());
  exit(EXIT_FAILURE);
}

void watch(const ParametersClient& client, bool limits) {
  const std::string answer = client.answer(limits ? "Watch(true, true)" : "Watch(true, false)");
  if (answer != "()") fail("no watcher: " + answer);
}

// What an instance is as the transaction sees it.
void askAll(const ParametersClient& visitor, const std::string& transaction,
            const std::string& name) {
  const std::string start = "(" + transaction + ", ";
  static_cast<void>(visitor.answer("GetState" + start + "['" + name + "'])"));
  static_cast<void>(visitor.answer("GetUses(['" + name + "'])"));
  static_cast<void>(visitor.answer("Explain" + start + "'" + name + "')"));
  static_cast<void>(visitor.answer("ListInstances" + start + "@as [])"));
}

class Soak {
 public:
  Soak(const PrivateBus& bus, uint64_t seed) : bus_(bus), random_(seed), host_(bus.address()) {}

  void begin() {
    const VariantPointer reply = parameters_.ask("ListInstances(4294967295, @as [])");
    names_ = textsOf(VariantPointer(g_variant_get_child_value(reply.get(), 0)).get());
    if (names_.empty()) fail("there are no instances");
    // Until the history is full, it grows.
    for (int i = 0; i < FULL_HISTORY; ++i) {
      static_cast<void>(host_.answer(i % 2 == 0 ? "single_set('mode', '720p/50')"
                                                : "single_set('mode', '1080i/50')"));
    }
    watch(parameters_, true);
  }
  void visit() {
    const Client client(bus_.address());
    const ParametersClient visitor(client);
    const std::string id = visitor.answer("Begin()");
    static_cast<void>(visitor.answer("Begin()"));  // left behind, with a value
    watch(visitor, pick(2) == 0);
    const std::string& name = names_[pick(names_.size())];
    const std::string value = std::to_string(static_cast<int64_t>(pick(300)) - 50);
    const std::string quoted = "'" + name + "'";
    const std::string set = "(" + id + ", " + quoted + ", '" + value + "')";
    static_cast<void>(client.answer("set_status" + set));
    askAll(visitor, id, name);
    askAll(visitor, COMMITTED, name);
    static_cast<void>(visitor.answer("Preview(" + id + ")"));
    if (pick(4) != 0) static_cast<void>(client.answer("commit(" + id + ")"));
    static_cast<void>(visitor.answer("GetDefinition('" + name.substr(0, name.find('[')) + "')"));
    static_cast<void>(visitor.answer("List('*')"));
    static_cast<void>(visitor.answer("ListNames('', ['rw'])"));
    static_cast<void>(visitor.answer("History(" + std::to_string(pick(5) + 1) + ")"));
    ++visits_;
  }
  // All visitors have left: nothing of theirs is there any more.
  void checkAtRest() {
    waitForBus(host_);
    for (const std::string& signal : parameters_.newSignals()) {
      const uint64_t serial = strtoull(signal.c_str() + signal.find('(') + 1, nullptr, 10);
      if (serial < last_) fail("out of order: " + signal);
      last_ = serial;
      ++signals_;
    }
    for (int tries = 0; parameters_.answer("Get('OpenTransactions')") != "<uint32 0>"; ++tries) {
      if (tries == 100) fail("transactions are left: " + parameters_.answer("ListTransactions()"));
      g_usleep(10000);
    }
    const std::string watchers = parameters_.answer("Get('Watchers')");
    if (watchers != "<uint32 1>") fail("watchers are left: " + watchers);
    if (signals_ == 0) fail("there was no signal");
  }
  bool waitForService(const Process& daemon) { return host_.waitForService(daemon); }
  [[nodiscard]] uint64_t visits() const { return visits_; }
  [[nodiscard]] uint64_t signals() const { return signals_; }
  [[nodiscard]] std::string commits() { return parameters_.answer("Get('Commits')"); }

 private:
  size_t pick(size_t count) { return std::uniform_int_distribution<size_t>(0, count - 1)(random_); }

  const PrivateBus& bus_;
  std::mt19937_64 random_;
  Client host_;
  ParametersClient parameters_{host_};
  std::vector<std::string> names_;
  uint64_t visits_ = 0;
  uint64_t signals_ = 0;
  uint64_t last_ = 0;
};

struct Figures {
  size_t kilobytes = 0;  // of resident memory
  size_t descriptors = 0;
};

void judge(const Figures& first, const Figures& now, uint64_t visits) {
  if (now.descriptors > first.descriptors) fail("The daemon has more descriptors open.");
  const bool isJudged = visits >= VISITS_OF_SETTLED_MEMORY && !IS_SANITIZED;
  if (isJudged && now.kilobytes * 100 > first.kilobytes * 101) {
    fail("The daemon's memory has grown by more than 1 % since the first tenth.");
  }
}

void run(uint64_t visits, uint64_t seed) {
  const PrivateBus bus;
  Daemon daemon({.text = contentsOf(DEFINITION_TEXT),
                 .arguments = {"--debug", "--", "MODEL=pro"},
                 .busAddress = bus.address()});
  Soak soak(bus, seed);
  if (!soak.waitForService(daemon.process())) fail("The daemon does not start.");
  soak.begin();
  const auto begin = std::chrono::steady_clock::now();
  const pid_t pid = daemon.process().pid();
  Figures first;
  printf("%8s %14s %9s %9s %5s %7s\n", "visits", "commits", "signals", "memory kB", "files",
         "seconds");
  for (uint64_t tenth = 1; tenth <= TENTHS; ++tenth) {
    while (soak.visits() < visits * tenth / TENTHS) soak.visit();
    soak.checkAtRest();
    const Figures now = {memoryOf(pid, "VmRSS:"), openDescriptors(pid)};
    if (tenth == 1) first = now;
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - begin;
    printf("%8lu %14s %9lu %9zu %5zu %7.1f\n", soak.visits(), soak.commits().c_str(),
           soak.signals(), now.kilobytes, now.descriptors, seconds.count());
    fflush(stdout);
    judge(first, now, visits);
  }
}

}  // namespace

int main(int argc, char** argv) {
  const uint64_t visits = argc == 3 ? std::strtoull(argv[1], nullptr, 10) : 0;
  if (visits < TENTHS) {
    fprintf(stderr, "usage: soak_visitors VISITS SEED, with %lu visits or more\n", TENTHS);
    return 2;
  }
  run(visits, std::strtoull(argv[2], nullptr, 10));
}
