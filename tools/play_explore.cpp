#include "tools/play_explore.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <utility>
#include <vector>

#include "check/printable.h"
#include "explore/explorer.h"
#include "explore/proved.h"
#include "tools/output_file.h"
#include "tools/play_coverage.h"
#include "tools/text_device.h"

namespace {

constexpr int STATUS_FOUND = 1;
constexpr int STATUS_FAILED = 2;
// Proofs are a help, and are not to take the time of the walks.
constexpr uint32_t MOST_PROOF_SECONDS = 10;

using Clock = std::chrono::steady_clock;

std::vector<PlayConstants> variantsIn(const ConstantChoices& choices) {
  std::vector<PlayConstants> variants;
  for (const NamedValues& values : variantsOf(choices)) {
    variants.emplace_back(values.begin(), values.end());
  }
  return variants;
}

// When a signal asked to come to an end, in steady nanoseconds; 0 until then.
std::atomic<int64_t> stoppedAt = 0;
static_assert(std::atomic<int64_t>::is_always_lock_free, "a signal sets it");

bool isStopped() { return stoppedAt != 0; }

int64_t steadyNanoseconds() {
  return std::chrono::nanoseconds(Clock::now().time_since_epoch()).count();
}

// timeout(1) tells the process and at once its group as well: within this time they are one signal.
constexpr int64_t ONE_SIGNAL_NS = 500'000'000;

void stop(int signal) {
  const int64_t now = steadyNanoseconds();
  int64_t first = 0;
  if (stoppedAt.compare_exchange_strong(first, now) || now - first < ONE_SIGNAL_NS) return;
  std::signal(signal, SIG_DFL);
  std::raise(signal);
}

// What was found is worth writing, so the first of these signals only ends the walks. A later one
// ends the process.
void stopAtSignals() {
  for (const int signal : {SIGINT, SIGTERM}) std::signal(signal, stop);
}

// Nobody is to wait for finds that cannot be written. Returns whether all files can be, as far as
// that can be known before.
bool areFilesWritable(const PlayArguments& arguments) {
  for (const std::string& file : {arguments.exploration.file, arguments.coverageFile}) {
    const int error = file.empty() ? 0 : whyNotWritable(file);
    if (error == 0) continue;
    std::fprintf(stderr, "ostrel-play: cannot write %s: %s\n", file.c_str(), std::strerror(error));
    return false;
  }
  return true;
}

// "found.session", "found-2.session", and so on.
std::string numberedName(const std::string& name, size_t number) {
  if (number == 1) return name;
  const size_t slash = name.rfind('/');
  const size_t dot = name.rfind('.');
  const bool hasEnding =
      dot != std::string::npos && dot > 0 && (slash == std::string::npos || dot > slash + 1);
  const size_t end = hasEnding ? dot : name.size();
  return name.substr(0, end) + "-" + std::to_string(number) + name.substr(end);
}

std::string counted(uint64_t count, const char* one, const char* many) {
  return std::to_string(count) + " " + (count == 1 ? one : many);
}

// Returns whether it could be written.
bool tell(const Find& find, size_t number, const std::string& file) {
  const std::string heading = "find " + std::to_string(number) + ": " + printable(find.fault.text);
  const std::string session = sessionOf(find);
  if (file.empty() || file == "-") {
    std::printf("%s\n%s\n", heading.c_str(), session.c_str());
    return true;
  }
  const std::string name = numberedName(file, number);
  const int error = writeOutputFile(name, session);
  if (error == 0) {
    std::printf("%s: see %s\n", heading.c_str(), printable(name).c_str());
  } else {
    std::fprintf(stderr, "ostrel-play: cannot write %s: %s\n", name.c_str(), std::strerror(error));
  }
  return error == 0;
}

}  // namespace

int explorePlay(const PlayArguments& arguments, const std::string& definitions) {
  if (!areFilesWritable(arguments)) return STATUS_FAILED;
  const Clock::time_point start = Clock::now();
  const PlayCoverage coverage(arguments, definitions);
  ExploreTask task = {[&](const PlayConstants& constants) {
                        return startTextDevice(arguments.definitions, definitions, constants,
                                               coverage.text());
                      },
                      coverage.text(),
                      variantsIn(arguments.choices),
                      arguments.exploration.seed,
                      {}};
  if (arguments.exploration.steps) task.budget.steps = *arguments.exploration.steps;
  if (const std::optional<uint32_t> seconds = arguments.exploration.seconds) {
    const Clock::time_point end = start + std::chrono::seconds(*seconds);
    task.budget.isOver = [end] { return Clock::now() >= end; };
    const uint32_t proofSeconds = std::clamp(*seconds / 4, 1U, MOST_PROOF_SECONDS);
    static_cast<void>(
        leaveOutProved(definitions, arguments.choices, proofSeconds, *coverage.text()));
  } else {
    static_cast<void>(
        leaveOutProved(definitions, arguments.choices, MOST_PROOF_SECONDS, *coverage.text()));
  }
  task.budget.isInterrupted = [] { return isStopped(); };
  stopAtSignals();
  const ExploreResult result = explore(task);
  if (!result.failure.empty()) {
    std::fprintf(stderr, "ostrel-play: cannot explore %s: %s\n", arguments.definitions.c_str(),
                 result.failure.c_str());
    return STATUS_FAILED;
  }
  bool isWritten = true;
  for (size_t i = 0; i < result.finds.size(); ++i) {
    isWritten = tell(result.finds[i], i + 1, arguments.exploration.file) && isWritten;
  }
  std::printf("%s in %s of %s, seed %llu%s\n",
              counted(result.finds.size(), "find", "finds").c_str(),
              counted(result.commits, "commit", "commits").c_str(),
              counted(task.variants.size(), "variant", "variants").c_str(),
              static_cast<unsigned long long>(arguments.exploration.seed),
              isStopped() ? ", interrupted" : "");
  const int covered = coverage.report(stdout);
  if (!isWritten || covered == STATUS_FAILED) return STATUS_FAILED;
  return result.finds.empty() ? covered : STATUS_FOUND;
}
