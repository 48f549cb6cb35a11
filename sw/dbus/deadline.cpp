#include "sw/dbus/deadline.h"

#include <sys/time.h>
#include <unistd.h>

#include <atomic>
#include <cassert>
#include <utility>

namespace {

std::atomic<const std::string*> currentLastWords = nullptr;

// Only what a signal handler may call.
void endProcess(int /*signal*/) {
  const std::string& words = *currentLastWords;
  static_cast<void>(!write(STDERR_FILENO, words.data(), words.size()));
  _exit(1);
}

void setTimer(int milliseconds) {
  itimerval timer{};
  timer.it_value = {milliseconds / 1000, milliseconds % 1000 * 1000};
  setitimer(ITIMER_REAL, &timer, nullptr);
}

}  // namespace

Deadline::Deadline(int milliseconds, std::string lastWords) : lastWords_(std::move(lastWords)) {
  assert(currentLastWords == nullptr);
  currentLastWords = &lastWords_;
  struct sigaction action {};
  action.sa_handler = endProcess;
  sigaction(SIGALRM, &action, &before_);
  setTimer(milliseconds);
}

Deadline::~Deadline() {
  setTimer(0);
  sigaction(SIGALRM, &before_, nullptr);
  currentLastWords = nullptr;
}
