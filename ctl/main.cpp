// ostrelctl: the parameters that ostrel serves, for people and scripts.
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <new>
#include <string_view>

#include "base/terminal.h"
#include "ctl/command_line.h"
#include "ctl/complete.h"
#include "ctl/service/exit_status.h"

namespace {

int run(int argc, char** argv) {
  const CommandLine line = parseCommandLine(argc, argv);
  std::string error;
  const std::unique_ptr<Bus> bus = Bus::connect(line.bus, error);
  if (bus == nullptr) endWith(STATUS_NO_SERVICE, error);
  Service service(*bus);
  const Output out(line.form, line.isQuiet, Style(isColoured(STDOUT_FILENO)));
  Client client = {service, out, line.program};
  const int status = line.run(client);
  if (std::ferror(stdout) == 0 && std::fflush(stdout) == 0) return status;
  endWith(STATUS_REFUSED, std::string("cannot write: ") + std::strerror(errno));
}

}  // namespace

int main(int argc, char** argv) {
  try {
    if (argc > 1 && std::string_view(argv[1]) == "complete") return complete(argc - 2, argv + 2);
    return run(argc, argv);
  } catch (const std::bad_alloc&) {
    endWith(STATUS_REFUSED, "memory is exhausted");
  }
}
