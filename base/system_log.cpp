#include "base/system_log.h"

#include <syslog.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <utility>

#include "base/log_socket.h"
#include "base/work.h"

namespace {

LogRedirection* innermost = nullptr;

LogSocket systemLog(_PATH_LOG);
uint64_t lostLines = 0;
void (*actOnLoss)() = nullptr;

// Returns 0 or LOG_LOST.
int write(const char* line) {
  const int result = systemLog.send(line);
  if (result != LOG_ABSENT) return result;
  // syslog(3) may wait for a log; here it finds none.
  syslog(LOG_ERR, "%s", line);
  return 0;
}

}  // namespace

void logError(const std::string& line) {
  Work::addSpent(WORK_PER_LOG_LINE + line.size());
  if (innermost != nullptr) {
    innermost->sink_(line);
    return;
  }
  if (!tellLostLines() && write(line.c_str()) == 0) return;
  ++lostLines;
  if (actOnLoss != nullptr) actOnLoss();
}

bool tellLostLines() {
  if (lostLines == 0) return false;
  std::array<char, 64> line = {};
  snprintf(line.data(), line.size(), "log: ERROR: lines lost: %ju", uintmax_t{lostLines});
  if (write(line.data()) != 0) return true;
  lostLines = 0;
  return false;
}

void whenLinesAreLost(void (*act)()) { actOnLoss = act; }

LogRedirection::LogRedirection(std::function<void(const std::string&)> sink)
    : sink_(std::move(sink)), outer_(innermost) {
  innermost = this;
}

LogRedirection::~LogRedirection() { innermost = outer_; }
