#include "deflang/system_log.h"

#include <syslog.h>

#include <utility>

namespace {

LogRedirection* innermost = nullptr;

}  // namespace

void logError(const std::string& line) {
  if (innermost != nullptr) {
    innermost->sink_(line);
    return;
  }
  syslog(LOG_ERR, "%s", line.c_str());
}

LogRedirection::LogRedirection(std::function<void(const std::string&)> sink)
    : sink_(std::move(sink)), outer_(innermost) {
  innermost = this;
}

LogRedirection::~LogRedirection() { innermost = outer_; }
