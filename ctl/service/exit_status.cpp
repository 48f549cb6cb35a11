#include "ctl/service/exit_status.h"

#include <cstdio>
#include <cstdlib>

void complain(const std::string& message) {
  std::fflush(stdout);
  std::fprintf(stderr, "ostrelctl: %s\n", message.c_str());
}

void endWith(ExitStatus status, const std::string& message) {
  complain(message);
  std::exit(status);
}
