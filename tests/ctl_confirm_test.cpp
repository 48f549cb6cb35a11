// ostrelctl set --confirm, and ostrelctl confirm.
#include <csignal>

#include "tests/harness/ctl_test.h"

namespace {

constexpr const char* DEVICE =
    "mode rw { rangeValid { \"wide\", \"slim\" } default { \"wide\" } }\n"
    "channel index { rangeValid { 1..2 } }\n"
    "position rw { index { channel } rangeValid ( mode == \"wide\" ) { 0..100 }\n"
    "  rangeValid ( mode == \"slim\" ) { 0..50 } default { 80 } }\n"
    "pixels ro { rangeValid ( mode == \"wide\" ) { 16 } rangeValid ( mode == \"slim\" ) { 4 } }\n"
    "extra rw { ctrlValid ( mode == \"slim\" ) rangeValid { 1..9 } default { 5 } }\n"
    "note rw { }\n"
    "temperature ro { default { 30 } }\n";

// What a number of a process is replaced by.
constexpr const char* NUMBERED = " 2>&1 | sed 's/confirm [0-9]*$/confirm N/'";
constexpr const char* ASKED =
    "ostrelctl: this is taken back in 1 s, unless it is confirmed: ostrelctl confirm N\n";

class CtlConfirmTest : public CtlServiceTest {
 protected:
  void serveDevice() {
    serve(DEVICE);
    expectLines({{.line = "ctl -q up"}});
  }
  // A set that waits for long.
  std::unique_ptr<Process> startSet(const std::string& assignments) {
    std::unique_ptr<Process> set =
        start("exec env XDG_RUNTIME_DIR=. \"$0\" set --confirm 600 " + assignments);
    while (set->errorsSoFar().find("ostrelctl confirm") == std::string::npos && set->running()) {
      usleep(10000);
    }
    return set;
  }
};

TEST_F(CtlConfirmTest, TakesBackWhatIsNotConfirmed) {
  serveDevice();
  const std::string start = "export XDG_RUNTIME_DIR=.; { ctl set --confirm 1 ";
  const std::string end = std::string("; echo $?; }") + NUMBERED;
  const std::string late = "ostrelctl: not confirmed in time\n";
  expectLines({
      // Also where there is no limit, and there was no value.
      {.line = start + "note=a" + end,
       .out = "note = a\n" + std::string(ASKED) + late + "restored 1 of 1\n1\n"},
      // With what has moved, what follows by itself, and what exists only now.
      {.line = start + "mode=slim" + end,
       .out = "mode = slim\nextra = 1 (was \"\", because of mode)\n"
              "pixels = 4 (was 16, because of mode)\n"
              "position[1] = 50 (was 80, because of mode)\n"
              "position[2] = 50 (was 80, because of mode)\n" +
              std::string(ASKED) + late + "restored 4 of 4\n1\n"},
      {.line = "ctl get '*'",
       .out = "mode=wide\nnote=\npixels=16\nposition[1]=80\nposition[2]=80\ntemperature=30\n"},
      // The device's own values.
      {.line = start + "--status temperature=99" + end,
       .out = "temperature = 99\n" + std::string(ASKED) + late + "restored 1 of 1\n1\n"},
      {.line = start + "--json 'position[1]=7'" + end,
       .out = "{\"stored\":[{\"name\":\"position[1]\",\"value\":\"7\",\"asked\":\"7\",\"cut\":"
              "false}],\"followed\":[]}\n" +
              std::string(ASKED) + late +
              "{\"restored\":1,\"cut\":[],\"refused\":[],\"absent\":[],\"unknown\":[]}\n1\n"},
      // Nothing to confirm.
      {.line = start + "'position[1]=80'" + end, .out = "position[1] = 80\n0\n"},
      {.line = start + "mode=sepia" + end,
       .out = "ostrelctl: cannot set mode to sepia: it takes slim, wide\n1\n"},
      {.line = "ls ostrelctl"},  // no mark is left
  });
}

TEST_F(CtlConfirmTest, TakesBackWhatIsLockedOnceTheRestIsBack) {
  serve(
      "source rw { rangeValid { \"in\", \"ref\" } default { \"in\" } }\n"
      "type rw { rangeValid { 0..9 } ctrlRO ( source == \"in\" ) default { 1 } }\n"
      "delay rw { ctrlRO ( source == \"in\" ) rangeValid { 0..(type * 10) } default { 7 } }\n");
  expectLines({
      {.line = "ctl -q up"},
      {.line =
           "XDG_RUNTIME_DIR=. ctl -q set --confirm 1 source=ref type=5 delay=40 2>&1 | tail -n +2",
       .out = "ostrelctl: not confirmed in time\n"},
      {.line = "ctl get source type delay", .out = "source=in\ntype=1\ndelay=7\n"},
  });
}

TEST_F(CtlConfirmTest, TellsWhatHadNoValueBefore) {
  serve(DEVICE);
  expectLines({
      {.line = "XDG_RUNTIME_DIR=. ctl -q set --confirm 1 mode=slim 2>&1 | tail -n +2",
       .out = "ostrelctl: not confirmed in time\n"
              "ostrelctl: extra stays 1: it had no value before\n"
              "ostrelctl: mode stays slim: it had no value before\n"
              "ostrelctl: pixels stays 4: it had no value before\n"},
  });
}

TEST_F(CtlConfirmTest, StaysWhereItIsConfirmed) {
  serveDevice();
  const std::unique_ptr<Process> set = startSet("--strict mode=slim 'position[1]=70'");
  const std::string number = std::to_string(set->pid());
  EXPECT_EQ(set->errorsSoFar(),
            "ostrelctl: this is taken back in 600 s, unless it is confirmed: ostrelctl confirm " +
                number + "\n");
  expectLines({
      {.line = "XDG_RUNTIME_DIR=. ctl complete words confirm ''", .out = "whole\n" + number + "\n"},
      {.line = "ctl transactions"},
      {.line = "XDG_RUNTIME_DIR=. ctl -b rack confirm",
       .err = "no commit waits to be confirmed\n",
       .status = 5},
      {.line = "XDG_RUNTIME_DIR=. ctl confirm 1",
       .err = number + ": mode=slim position[1]=70\nno commit 1 waits to be confirmed\n",
       .status = 5},
      {.line = "XDG_RUNTIME_DIR=. ctl confirm",
       .out = "confirmed " + number + ": mode=slim position[1]=70\n"},
      {.line = "XDG_RUNTIME_DIR=. ctl confirm",
       .err = "no commit waits to be confirmed\n",
       .status = 5},
      {.line = "ctl get mode", .out = "slim\n"},
  });
  EXPECT_EQ(set->waitForEnd().status, 4);  // a value was cut
}

TEST_F(CtlConfirmTest, ConfirmsOneOfSeveral) {
  serveDevice();
  const std::unique_ptr<Process> killed = startSet("note=b");
  kill(killed->pid(), SIGKILL);
  EXPECT_EQ(killed->waitForEnd().status, -SIGKILL);
  const std::unique_ptr<Process> one = startSet("'position[1]=1'");
  const std::unique_ptr<Process> other = startSet("'position[2]=2'");
  std::string first = std::to_string(one->pid()) + ": position[1]=1\n";
  std::string second = std::to_string(other->pid()) + ": position[2]=2\n";
  if (other->pid() < one->pid()) std::swap(first, second);
  expectLines({
      {.line = "XDG_RUNTIME_DIR=. ctl confirm",
       .err = first + second + "say which, by the number: ostrelctl confirm " +
              first.substr(0, first.find(':')) + "\n",
       .status = 1},
      {.line = "XDG_RUNTIME_DIR=. ctl --address \"$DBUS_SESSION_BUS_ADDRESS\" confirm 2>&1 | "
               "sed -n 's/.* --address .* confirm [0-9]*$/the same bus/p'",
       .out = "the same bus\n"},
      {.line = "XDG_RUNTIME_DIR=. ctl confirm --json " + std::to_string(other->pid()),
       .out = "{\"confirmed\":" + std::to_string(other->pid()) + ",\"what\":\"position[2]=2\"}\n"},
  });
  EXPECT_EQ(other->waitForEnd().status, 0);
  for (const int number : {SIGHUP, SIGTSTP, SIGPIPE}) kill(one->pid(), number);
  usleep(200000);
  EXPECT_TRUE(one->running());
  kill(one->pid(), SIGTERM);
  const Ending ending = one->waitForEnd();
  EXPECT_EQ(ending.status, 1);
  EXPECT_EQ(ending.err.substr(ending.err.find('\n') + 1), "ostrelctl: interrupted\n");
  expectLines({{.line = "ctl get position", .out = "position[1]=80\nposition[2]=2\n"},
               {.line = "ls ostrelctl"}});
}

TEST_F(CtlConfirmTest, AsksOnATerminal) {
  serveDevice();
  // Enter that is typed before the question is no answer to it.
  const std::string typed =
      "export XDG_RUNTIME_DIR=.; mkfifo keys; script -qfec \"'$0' set --confirm 60 mode=slim\" "
      "/dev/null <keys >shown & exec 3>keys; until grep -qs 'press Enter' shown; do sleep .05; "
      "done; ";
  expectLines({{.line = typed + "echo >&3; wait $!; echo $?; tail -n 1 shown | tr -d '\\r'",
                .out = "0\nconfirmed\n"},
               {.line = "ctl get mode", .out = "slim\n"}});
}

TEST_F(CtlConfirmTest, TakesBackWhereItsTerminalIsLost) {
  serveDevice();
  const std::string lost =
      "export XDG_RUNTIME_DIR=.; mkfifo keys; script -qfec \"'$0' set --confirm 2 mode=slim\" "
      "/dev/null <keys >shown & exec 3>keys; until grep -qs 'press Enter' shown; do sleep .05; "
      "done; kill -9 $!; ctl get mode; until [ $(ctl get 'position[1]') = 80 ]; do sleep .1; done; "
      "ctl get mode; ctl get pixels";
  expectLines({{.line = lost, .out = "slim\nwide\n16\n"}});
}

TEST_F(CtlConfirmTest, KeepsWhatOthersHaveSetSince) {
  serveDevice();
  const std::unique_ptr<Process> set = startSet("mode=slim note=a");
  expectLines({{.line = "ctl -q set 'position[1]=33' 'position[2]=33'"},
               {.line = "ctl -q set 'position[2]=50' note=b"},
               {.line = "ctl -q set note=a; ctl get note", .out = "a\n"}});
  kill(set->pid(), SIGINT);
  const Ending ending = set->waitForEnd();
  EXPECT_EQ(ending.status, 1);
  std::string errors = ending.err.substr(ending.err.find('\n') + 1);
  const size_t by = errors.find(" :1.");
  errors.erase(by, errors.find(' ', by + 1) - by);
  // A value that is as it was set again is taken back.
  EXPECT_EQ(errors,
            "ostrelctl: interrupted\n"
            "ostrelctl: position[1] stays 33: has set it since, in commit 4\n");
  expectLines({{.line = "ctl get mode note position",
                .out = "mode=wide\nnote=\nposition[1]=33\nposition[2]=80\n"}});
}

TEST_F(CtlConfirmTest, EndsWithTheService) {
  serveDevice();
  const std::unique_ptr<Process> first = startSet("mode=slim");
  static_cast<void>(client().newSignals());
  expectOrderlyEnd();
  const Ending ending = first->waitForEnd();
  EXPECT_EQ(ending.status, 3);
  EXPECT_EQ(ending.err.substr(ending.err.find('\n') + 1),
            "ostrelctl: the service has gone, and what was set with it: there is nothing to take "
            "back\n");
}

TEST_F(CtlConfirmTest, EndsWithTheBus) {
  serveDevice();
  const std::unique_ptr<Process> set = startSet("mode=slim");
  bus().stop();
  const Ending ending = set->waitForEnd();
  EXPECT_EQ(ending.status, 3);
  EXPECT_EQ(ending.err.substr(ending.err.find('\n') + 1),
            "ostrelctl: the bus has gone: nothing can be taken back\n");
  EXPECT_EQ(daemon().process().waitForEnd().status, 1);
  forgetDaemon();
}

TEST_F(CtlConfirmTest, NeedsAPlaceForItsMark) {
  serveDevice();
  const std::string no = "there is no place to note that a commit waits: ";
  expectLines({
      {.line = "unset XDG_RUNTIME_DIR; ctl set --confirm 9 mode=slim",
       .err = no + "XDG_RUNTIME_DIR is not set\n",
       .status = 1},
      {.line = "XDG_RUNTIME_DIR=/nowhere ctl set --confirm 9 mode=slim",
       .err = no + "/nowhere/ostrelctl: No such file or directory\n",
       .status = 1},
      {.line = "unset XDG_RUNTIME_DIR; ctl confirm",
       .err = "no commit waits to be confirmed\n",
       .status = 5},
      {.line = "ctl get mode", .out = "wide\n"},
      {.line = "ctl set --confirm 0 mode=slim 2>&1 | wc -l", .out = "1\n"},
  });
}

}  // namespace
