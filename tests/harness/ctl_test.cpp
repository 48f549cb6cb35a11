#include "tests/harness/ctl_test.h"

namespace {

std::string withoutName(std::string err) {
  constexpr std::string_view NAME = "ostrelctl: ";
  for (size_t at = 0; at < err.size(); at = err.find('\n', at) + 1) {
    EXPECT_EQ(err.substr(at, NAME.size()), NAME);
    err.erase(at, NAME.size());
  }
  return err;
}

}  // namespace

std::unique_ptr<Process> CtlServiceTest::start(const std::string& line) {
  return std::make_unique<Process>(
      Process::Options{.command = {"/bin/sh", "-c", "cd \"$1\"; ctl() { \"$0\" \"$@\"; }\n" + line,
                                   OSTRELCTL, directory_.path()},
                       .environment = {{"DBUS_SESSION_BUS_ADDRESS", bus().address()},
                                       {"BUS", bus().address()},
                                       {"LC_ALL", "C.UTF-8"},
                                       {"TZ", "UTC"}},
                       .outputToPipe = line.starts_with("exec ")});
}

void CtlServiceTest::expectLines(const std::vector<CtlLine>& lines) {
  for (const CtlLine& each : lines) {
    SCOPED_TRACE(each.line);
    const Ending ending = start(each.line)->waitForEnd();
    EXPECT_EQ(ending.out, each.out);
    EXPECT_EQ(withoutName(ending.err), each.err);
    EXPECT_EQ(ending.status, each.status);
  }
  // What the daemon has said of refused values.
  if (hasDaemon()) static_cast<void>(daemon().newLogLines());
}
