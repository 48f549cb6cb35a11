// The soak: the real daemon on a private bus under a long mixed load from eight clients, every
// answer and signal checked against a model.
//
//   soak CALLS SEED       as in: nice build/release/tests/soak/soak 1000000 1
//
// The seed gives each client its calls; how the bus mixes those of the clients differs from run to
// run. At each tenth of the calls a row of the report is printed: calls, wrong answers, signals,
// errors by kind, resident memory and open descriptors of the daemon, seconds.
//
// The exit status is 1 when an answer was wrong, when the daemon stopped answering or did not end
// in order, when it has more descriptors open than after the first tenth, or, from 1,000,000 calls
// on, when its memory has grown by more than 1 % since then. Shorter runs end before the memory has
// settled, and under a sanitizer it grows by design.
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "tests/harness/client.h"
#include "tests/harness/daemon.h"
#include "tests/harness/private_bus.h"
#include "tests/soak/crew.h"

namespace {

constexpr uint64_t TENTHS = 10;
constexpr uint64_t LEAST_CALLS = 100;
constexpr uint64_t CALLS_OF_SETTLED_MEMORY = 1000000;
#ifdef __SANITIZE_ADDRESS__
constexpr bool IS_SANITIZED = true;
#else
constexpr bool IS_SANITIZED = false;
#endif

// The kinds of errors, each known by the end of its messages; the last takes what is left.
struct ErrorKind {
  const char* title;
  std::vector<const char*> endings;
};
const std::array<ErrorKind, 7> ERROR_KINDS = {
    {{"id", {"transaction id"}},
     {"name", {"name is invalid", "parameter name", "not found"}},
     {"value", {"value is invalid"}},
     {"index", {"index is invalid", "parameter index", "index is not valid"}},
     {"refused", {"definition is invalid"}},
     {"range", {"(1)", "(-2)", "(-4)", "(-5)", "(-6)"}},
     {"other", {""}}}};

size_t kindOf(const std::string& message) {
  for (size_t kind = 0; kind + 1 < ERROR_KINDS.size(); ++kind) {
    for (const char* ending : ERROR_KINDS[kind].endings) {
      if (message.ends_with(ending)) return kind;
    }
  }
  return ERROR_KINDS.size() - 1;
}

// What the system says about the daemon.
struct Figures {
  size_t kilobytes = 0;  ///< of resident memory
  size_t descriptors = 0;
};

Figures figuresOf(pid_t pid) { return {memoryOf(pid, "VmRSS:"), openDescriptors(pid)}; }

std::string contentsOf(const char* file) {
  std::ifstream stream(file);
  return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

std::vector<std::string> commitLines(Daemon& daemon) {
  std::vector<std::string> lines = daemon.newLogLines();
  std::erase_if(lines, [](const std::string& line) { return !line.starts_with("commit:"); });
  return lines;
}

void printTitles() {
  printf("%10s %6s %9s", "calls", "wrong", "signals");
  for (const ErrorKind& kind : ERROR_KINDS) printf(" %7s", kind.title);
  printf(" %9s %5s %7s\n", "memory kB", "files", "seconds");
}

void printRow(const Crew& crew, const Figures& figures, double seconds) {
  std::array<uint64_t, ERROR_KINDS.size()> errors{};
  for (const auto& [message, count] : crew.errors()) errors[kindOf(message)] += count;
  printf("%10lu %6lu %9lu", crew.calls(), crew.wrong(), crew.signals());
  for (const uint64_t count : errors) printf(" %7lu", count);
  printf(" %9zu %5zu %7.1f\n", figures.kilobytes, figures.descriptors, seconds);
  fflush(stdout);
}

// Whether the daemon needs no more than after the first tenth.
bool isFlat(const Figures& first, const Figures& now, uint64_t calls) {
  bool isGood = true;
  if (now.descriptors > first.descriptors) {
    printf("The daemon has more descriptors open than after the first tenth.\n");
    isGood = false;
  }
  const bool isJudged = calls >= CALLS_OF_SETTLED_MEMORY && !IS_SANITIZED;
  if (isJudged && now.kilobytes * 100 > first.kilobytes * 101) {
    printf("The daemon's memory has grown by more than 1 %% since the first tenth.\n");
    isGood = false;
  }
  return isGood;
}

bool soak(Crew& crew, Daemon& daemon, uint64_t calls) {
  const auto begin = std::chrono::steady_clock::now();
  Figures first;
  bool isGood = crew.make(bringUp());
  printTitles();
  for (uint64_t tenth = 1; tenth <= TENTHS && isGood; ++tenth) {
    // The last call of each tenth reads everything.
    isGood = crew.makeFromLoad(calls * tenth / TENTHS - 1 - crew.calls()) && crew.make(readAll());
    if (!isGood) {
      printf("The daemon does not answer.\n");
      break;
    }
    crew.checkAtRest(commitLines(daemon));
    const Figures now = figuresOf(daemon.process().pid());
    first = tenth == 1 ? now : first;
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - begin;
    printRow(crew, now, seconds.count());
    isGood = isFlat(first, now, calls);
  }
  return isGood;
}

bool endsInOrder(Crew& crew, Daemon& daemon) {
  const bool isAnswered = crew.make({.method = "die"});
  const Ending ending = daemon.waitForEnd();
  if (isAnswered && ending.status == 1 && ending.err.empty()) return true;
  printf("The daemon did not end in order: status %d, standard error:\n%s\n", ending.status,
         ending.err.c_str());
  return false;
}

int run(uint64_t calls, uint64_t seed) {
  const PrivateBus bus;
  Daemon daemon({.text = contentsOf(DEFINITION_TEXT),
                 .arguments = {"--debug", "--", std::string(CONSTANT_NAME) + "=" + CONSTANT_VALUE},
                 .busAddress = bus.address()});
  if (!Client(bus.address()).waitForService(daemon.process())) {
    printf("The daemon does not start:\n%s\n", daemon.waitForEnd().err.c_str());
    return EXIT_FAILURE;
  }
  Crew crew(bus.address(), seed);
  const bool isGood = soak(crew, daemon, calls) && endsInOrder(crew, daemon);
  for (const auto& [message, count] : crew.errors()) printf("%10lu %s\n", count, message.c_str());
  return isGood && crew.wrong() == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}

}  // namespace

int main(int argc, char** argv) {
  const uint64_t calls = argc == 3 ? std::strtoull(argv[1], nullptr, 10) : 0;
  if (calls < LEAST_CALLS) {
    fprintf(stderr, "usage: soak CALLS SEED, with %lu calls or more\n", LEAST_CALLS);
    return 2;
  }
  return run(calls, std::strtoull(argv[2], nullptr, 10));
}
